#include "tests/support/Growth.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>

namespace tamzo::testing {
namespace {

// So many steps that the compiler cannot leave out.
void work(std::size_t steps) {
  volatile std::size_t done = 0;
  for (std::size_t i = 0; i < steps; ++i) {
    done = i;
  }
  static_cast<void>(done);
}

TEST(GrowthTest, TellsLinearFromQuadratic) {
  EXPECT_TRUE(growsLinearly(100'000, [](std::size_t size) { return [size] { work(size); }; }));
  EXPECT_FALSE(growsLinearly(300, [](std::size_t size) { return [size] { work(size * size); }; }));
}

TEST(GrowthTest, ProcessorTimeIsThatOfThisThreadsWork) {
  const double begin = threadSeconds();
  work(1'000'000);
  const double once = threadSeconds() - begin;
  EXPECT_GT(once, 0.0);
}

}  // namespace
}  // namespace tamzo::testing
