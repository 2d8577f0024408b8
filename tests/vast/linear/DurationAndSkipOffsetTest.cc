// How long the video runs, and when the viewer may leave.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using DurationAndSkipOffsetTest = UpdaterTest;

TEST_F(DurationAndSkipOffsetTest, ItsDurationIsReadAndLogged) {
  collectLog();
  ad_->updateDuration(
      rootOf("<Linear><Duration> 00:00:30 </Duration><Duration>x</Duration></Linear>"));
  ASSERT_NE(ad_->duration(), nullptr);
  EXPECT_EQ(ad_->duration()->text(), Text(" 00:00:30 "));
  EXPECT_EQ(ad_->duration()->durationInSeconds(), 30);
  ASSERT_EQ(log().size(), 3U);
  EXPECT_TRUE(logged("Vast Ad Duration  00:00:30 "));
  EXPECT_TRUE(log()[1].starts_with("[TAMZO-LOG][v8.0.0 p0] Duration Object Class Type is "));
  EXPECT_TRUE(logged("Duration: 30"));
}

TEST_F(DurationAndSkipOffsetTest, AnEmptyDurationKeepsTheOneBefore) {
  const auto before = TamzoAdDuration::initFromString("00:00:10");
  ad_->setDuration(before);
  collectLog();
  ad_->updateDuration(rootOf("<Linear><Duration/></Linear>"));
  EXPECT_EQ(log().size(), 2U);
  ad_->updateDuration(rootOf("<Linear/>"));
  ad_->updateDuration(NodeList());
  EXPECT_EQ(ad_->duration(), before);
}

TEST_F(DurationAndSkipOffsetTest, ASkipOffsetIsAClockTimeOrAShareOfTheDuration) {
  struct Row {
    Text offset;
    const char* duration;  // null for none
    double millis;
  };
  const std::vector<Row> rows{
      {"00:00:05", nullptr, 5000},
      {"01:02:03", nullptr, 3723000},
      {"00:00:05.750", nullptr, 5000},
      {" 0: 1: 5", nullptr, 65000},
      {"+0:+1:+5", nullptr, 65000},
      {"0:0:-5", nullptr, -5000},
      {"00:01:05:99", nullptr, 65000},
      {"::5", nullptr, 5000},
      {"::", nullptr, 0},
      {"1::", nullptr, 3600000},
      {"a:b:7s", nullptr, 7000},
      {"", nullptr, 0},
      {"5", nullptr, 0},
      {"00:05", nullptr, 0},
      {"garbage", nullptr, 0},
      // 32-bit arithmetic, which wraps: 2147483 s are the most it can tell.
      {"00:00:2147483", nullptr, 2147483000},
      {"00:00:2147484", nullptr, -2147483296},
      {"596:31:24", nullptr, -2147483296},
      {"00:00:2147483647", nullptr, -1000},
      {"00:00:99999999999", nullptr, -1000},
      {"2147483647:2147483647:2147483647", nullptr, -3661000},
      {"-596523:-14:-8", nullptr, 0},
      {"10%", "00:00:30", 3000},
      {"12.5%", "00:00:30", 3750},
      {"150%", "00:00:30", 45000},
      {"-10%", "00:00:30", -3000},
      {" 10 %", "00:00:30", 3000},
      {"10%%", "00:00:30", 3000},
      {"1e1%", "00:00:30", 3000},
      {"%", "00:00:30", 0},
      {"abc%", "00:00:30", 0},
      {"00:00:05%", "00:00:30", 0},
      {"10%", nullptr, 0},
      {"10%", "garbage", 0},
      {"10% ", "00:00:30", 0},
      // In exactly this order: first times, then by, then times.
      {"7%", "00:00:15", ((15.0 * 7.0) / 100.0) * 1000.0},
      {"33.3%", "00:00:31", ((31.0 * 33.3) / 100.0) * 1000.0},
  };
  for (const Row& row : rows) {
    ad_->setSkipOffsetMillis(1.0);
    ad_->setDuration(row.duration == nullptr ? nullptr
                                             : TamzoAdDuration::initFromString(row.duration));
    ad_->updateSkipOffset(row.offset);
    EXPECT_EQ(ad_->skipOffsetMillis(), row.millis) << row.offset;
  }
  ad_->setDuration(nullptr);
  ad_->updateSkipOffset("1e999%");
  EXPECT_TRUE(std::isnan(ad_->skipOffsetMillis())) << "an infinite share of nothing";
  ad_->updateSkipOffset("-0%");
  EXPECT_TRUE(std::signbit(ad_->skipOffsetMillis())) << "0 below zero";
  ad_->setDuration(TamzoAdDuration::initFromString("00:00:30"));
  ad_->updateSkipOffset("1e999%");
  EXPECT_EQ(ad_->skipOffsetMillis(), std::numeric_limits<double>::infinity());

  ad_->setSkipOffsetMillis(1.0);
  ad_->updateSkipOffset(Text());
  EXPECT_EQ(ad_->skipOffsetMillis(), 1.0) << "nil changes nothing";
}

}  // namespace
}  // namespace tamzo::testing
