#include "tamzo/net/Deadline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tamzo::testing {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(DeadlineTest, NeverIsNeverPast) {
  for (const Deadline& never :
       {Deadline(), Deadline::in(kInfinity), Deadline::in(1e300), Deadline::in(1e11)}) {
    EXPECT_TRUE(never.isNever());
    EXPECT_FALSE(never.isPast());
    EXPECT_EQ(never.secondsLeft(), kInfinity);
  }
}

TEST(DeadlineTest, NoTimeIsPastAtOnce) {
  for (const double none :
       {0.0, -0.0, -1.0, -1e300, -kInfinity, std::numeric_limits<double>::quiet_NaN()}) {
    const Deadline deadline = Deadline::in(none);
    EXPECT_FALSE(deadline.isNever()) << none;
    EXPECT_TRUE(deadline.isPast()) << none;
    EXPECT_EQ(deadline.secondsLeft(), 0.0) << none;
  }
}

TEST(DeadlineTest, CountsDown) {
  const Deadline deadline = Deadline::in(1000.0);
  EXPECT_FALSE(deadline.isPast());
  const double left = deadline.secondsLeft();
  EXPECT_LE(left, 1000.0);
  EXPECT_GT(left, 1.0);
  EXPECT_LE(deadline.secondsLeft(), left);
}

TEST(DeadlineTest, TheSoonerOfTwoHolds) {
  const Deadline soon = Deadline::in(0.0);
  const Deadline late = Deadline::in(1000.0);
  EXPECT_TRUE(soon.orSooner(late).isPast());
  EXPECT_TRUE(late.orSooner(soon).isPast());
  EXPECT_FALSE(late.orSooner(Deadline()).isNever());
  EXPECT_FALSE(Deadline().orSooner(late).isNever());
  EXPECT_TRUE(Deadline().orSooner(Deadline()).isNever());
}

}  // namespace
}  // namespace tamzo::testing
