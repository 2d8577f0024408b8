#include "tamzo/sdk/TamzoAdDuration.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

namespace tamzo::testing {
namespace {

template <typename Value>
struct DurationRow {
  std::string_view text;
  Value value;
};

TEST(TamzoAdDurationTest, ReadsAClockTimeInWholeSeconds) {
  const std::vector<DurationRow<std::int64_t>> rows{
      {"00:00:30", 30},
      {"00:00:30.000", 30},
      {"00:00:30.999", 30},
      {" \n00:01:00\t", 60},
      {"01:02:03", 3723},
      {"1:2:3", 3723},
      {"100:00:00", 360000},
      {"00:00:00", 0},
      {"", 0},
      {"30", 0},
      {"00:30", 0},
      {"25%", 0},
      {"aa:bb:cc", 0},
      {"-1:00:00", 0},
      {"00:00:", 0},
      {"00:00:5.", 0},
      {"00:00:30:00", 0},
  };
  for (const auto& row : rows) {
    const auto duration = TamzoAdDuration::initFromString(Text(row.text));
    ASSERT_NE(duration, nullptr) << '"' << row.text << '"';
    EXPECT_EQ(duration->durationInSeconds(), row.value) << '"' << row.text << '"';
    EXPECT_EQ(duration->text(), Text(row.text)) << "the text is kept as it stands";
  }
}

TEST(TamzoAdDurationTest, ADurationIsAClockTimeInWholeSeconds) {
  const struct {
    const char* text;
    std::int64_t seconds;
  } rows[] = {
      {"00:00:30", 30},
      {"00:00:30.000", 30},
      {"01:02:03.999", 3723},
      {" \n00:01:00\t", 60},
      {"0:0:5", 5},
      {"100:00:00", 360000},
      {"00:90:90", 5490},
      {"", 0},
      {"30", 0},
      {"00:30", 0},
      {"00:00:30:00", 0},
      {"-00:00:30", 0},
      {"00:00:-5", 0},
      {"00:00:", 0},
      {"::", 0},
      {"00:00:5s", 0},
      {"00:00:5.", 0},
      {"00:00:5.x", 0},
      {"00:00: 5", 0},
      {"50%", 0},
      {"garbage", 0},
      {"9999999999:0:0", std::int64_t{std::numeric_limits<std::int32_t>::max()} * 3600},
  };
  for (const auto& row : rows) {
    const auto duration = TamzoAdDuration::initFromString(row.text);
    EXPECT_EQ(duration->durationInSeconds(), row.seconds) << row.text;
    EXPECT_EQ(duration->text(), row.text);
  }
  EXPECT_EQ(TamzoAdDuration::initFromString(Text())->durationInSeconds(), 0);
}

}  // namespace
}  // namespace tamzo::testing
