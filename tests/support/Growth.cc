#include "tests/support/Growth.h"

#include <algorithm>
#include <ctime>
#include <limits>

namespace tamzo::testing {
namespace {

constexpr std::size_t kFactor = 16;
constexpr double kMostGrowth = 6.0 * kFactor;
constexpr int kTries = 8;

double secondsOf(const std::function<void()>& work) {
  const double begin = threadSeconds();
  work();
  return threadSeconds() - begin;
}

}  // namespace

double threadSeconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

bool growsLinearly(std::size_t size,
                   const std::function<std::function<void()>(std::size_t)>& prepare) {
  const std::function<void()> once = prepare(size);
  const std::function<void()> sixteenfold = prepare(size * kFactor);
  double little = std::numeric_limits<double>::infinity();
  double much = std::numeric_limits<double>::infinity();
  for (int i = 0; i < kTries; ++i) {
    // Both grow shorter from try to try, the small one first: were it the one that is slow for
    // once, anything would pass.
    for (int j = 0; j < 3; ++j) {
      little = std::min(little, secondsOf(once));
    }
    much = std::min(much, secondsOf(sixteenfold));
    if (much < kMostGrowth * little) {
      return true;
    }
  }
  return false;
}

}  // namespace tamzo::testing
