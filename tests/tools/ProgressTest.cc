#include "tools/Progress.h"

#include <gtest/gtest.h>

namespace tamzo::testing {
namespace {

using command::progressBar;

TEST(Progress, ItShowsCountRateAndTimeLeft) {
  EXPECT_EQ(progressBar({25, 250, 0.5}, {100, 1000}, 79),
            "[##########                              ] 25/100  50/s  2 s left");
  EXPECT_EQ(progressBar({100, 1000, 4}, {100, 1000}, 79),
            "[########################################] 100/100  25/s  0 s left");
  EXPECT_EQ(progressBar({0, 0, 0}, {100, 1000}, 79),
            "[                                        ] 0/100  0.0/s  ? left");
}

TEST(Progress, WhereTheCountIsUnknownBytesTell) {
  EXPECT_EQ(progressBar({3, 500, 600}, {0, 1000}, 47),
            "[#####     ] 3 responses  0.0/s  10:00 min left");
  EXPECT_EQ(progressBar({3, 500, 3}, {0, 0}, 79), "3 responses  1.0/s  3 s");
  EXPECT_EQ(progressBar({5, 0, 3661}, {10, 0}, 79),
            "[####################                    ] 5/10  0.0/s  1:01 h left");
}

TEST(Progress, MoreThanWasThereIsNoMoreThanAll) {
  EXPECT_EQ(progressBar({5, 3000, 1}, {5, 1000}, 33), "[##########] 5/5  5.0/s  0 s left");
}

TEST(Progress, ANarrowTerminalHasNoBar) {
  EXPECT_EQ(progressBar({1, 1, 1}, {2, 2}, 20), "1/2  1.0/s  1 s left");
}

}  // namespace
}  // namespace tamzo::testing
