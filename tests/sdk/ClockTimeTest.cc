#include "sdk/ClockTime.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>

namespace tamzo::testing {
namespace {

// The two readings of one text, side by side: whole seconds of a duration or of a tracker's offset,
// milliseconds of a skip offset.
struct Readings {
  std::string_view text;
  std::int64_t strictSeconds;
  double lenientMillis;
};

void expectReadings(const Readings& row) {
  EXPECT_EQ(clockSeconds(row.text), row.strictSeconds) << '"' << row.text << '"';
  EXPECT_EQ(lenientClockMillis(row.text), row.lenientMillis) << '"' << row.text << '"';
}

TEST(ClockTimeTest, AClockTimeReadsAlike) {
  for (const Readings& row : {
           Readings{"00:00:00", 0, 0},
           {"00:00:30", 30, 30'000},
           {"01:02:03", 3723, 3'723'000},
           {"1:2:3", 3723, 3'723'000},
           {"00:90:90", 5490, 5'490'000},
           {"100:00:00", 360'000, 360'000'000},
           {"00:00:30.999", 30, 30'000},
           {"00:00:30.0", 30, 30'000},
           {" 00:01:00", 60, 60'000},
           {"00:01:00 \n", 60, 60'000},
           {"\xC2\xA0"
            "00:01:00",
            60, 60'000},
           {"0000000000000000000001:0:0", 3600, 3'600'000},
       }) {
    expectReadings(row);
  }
}

TEST(ClockTimeTest, WhatIsNoneReadsAsNothingWhereThereAreNoThreeParts) {
  for (const std::string_view text : {"", " ", "30", "00:30", "5s", "25%", "garbage", ":", "1:2"}) {
    expectReadings({text, 0, 0});
  }
}

TEST(ClockTimeTest, WhatIsNearlyOneIsGuessedForSkipOffsetsOnly) {
  for (const Readings& row : {
           // digits are missing
           Readings{"::", 0, 0},
           {"::5", 0, 5000},
           {"1::", 0, 3'600'000},
           {"00:00:", 0, 0},
           {"00:01:", 0, 60'000},
           // something follows the digits
           {"00:00:5s", 0, 5000},
           {"00:00:5.", 0, 5000},
           {"00:00:5.x", 0, 5000},
           {"00:00:5.5.5", 0, 5000},
           {"00:00:5%", 0, 5000},
           {"1h:2m:3s", 0, 3'723'000},
           // something stands before them
           {"00:00: 5", 0, 5000},
           {"00: 01:05", 0, 65'000},
           {"+0:+1:+5", 0, 65'000},
           {"-00:00:30", 0, 30'000},
           {"00:00:-5", 0, -5000},
           {"a:b:7", 0, 7000},
           // a part too many
           {"00:00:30:00", 0, 30'000},
           {"00:01:05:99:1", 0, 65'000},
       }) {
    expectReadings(row);
  }
}

TEST(ClockTimeTest, LargeNumbersAreClampedAndMillisecondsWrap) {
  for (const Readings& row : {
           // As many seconds as fit into 32 bits as milliseconds, and one more.
           Readings{"00:00:2147483", 2'147'483, 2'147'483'000},
           {"00:00:2147484", 2'147'484, -2'147'483'296},
           {"596:31:23", 2'147'483, 2'147'483'000},
           {"596:31:24", 2'147'484, -2'147'483'296},
           {"00:00:2147483647", 2'147'483'647, -1000},
           {"00:00:99999999999", 2'147'483'647, -1000},
           {"9999999999:0:0", std::int64_t{2'147'483'647} * 3600, -3'600'000},
           {"9999999999:9999999999:9999999999", std::int64_t{2'147'483'647} * 3661, -3'661'000},
       }) {
    expectReadings(row);
  }
}

}  // namespace
}  // namespace tamzo::testing
