#include "tamzo/net/Cancellation.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace tamzo::testing {
namespace {

TEST(CancellationTest, EveryHandleSeesItForGood) {
  const Cancellation stop;
  const Cancellation same = stop;  // NOLINT(performance-unnecessary-copy-initialization)
  const Cancellation other;
  EXPECT_FALSE(stop.isCancelled());
  same.cancel();
  same.cancel();
  EXPECT_TRUE(stop.isCancelled());
  EXPECT_TRUE(same.isCancelled());
  EXPECT_FALSE(other.isCancelled());
}

TEST(CancellationTest, NeverIsNeverCancelled) {
  const Cancellation never = Cancellation::never();
  int calls = 0;
  {
    const Cancellation::OnCancel wake(never, [&] { ++calls; });
    never.cancel();
  }
  EXPECT_FALSE(never.isCancelled());
  EXPECT_EQ(calls, 0);
}

TEST(CancellationTest, WhoWaitsIsWokenOnceAndNobodyElse) {
  const Cancellation stop;
  std::vector<int> calls(3);
  const Cancellation::OnCancel first(stop, [&] { ++calls[0]; });
  std::optional<Cancellation::OnCancel> gone(std::in_place, stop, [&] { ++calls[1]; });
  const Cancellation::OnCancel last(stop, [&] { ++calls[2]; });
  gone.reset();
  stop.cancel();
  stop.cancel();
  EXPECT_EQ(calls, (std::vector<int>{1, 0, 1}));
}

TEST(CancellationTest, WhoComesTooLateIsWokenAtOnce) {
  const Cancellation stop;
  stop.cancel();
  int calls = 0;
  const Cancellation::OnCancel wake(stop, [&] { ++calls; });
  EXPECT_EQ(calls, 1);
}

TEST(CancellationTest, OutlivesTheHandleThatMadeIt) {
  auto stop = std::make_unique<Cancellation>();
  const Cancellation kept = *stop;
  int calls = 0;
  const Cancellation::OnCancel wake(*stop, [&] { ++calls; });
  stop.reset();
  kept.cancel();
  EXPECT_EQ(calls, 1);
}

// What is woken may go at any moment on its own thread.
TEST(CancellationTest, NobodyIsCalledOnceItIsGone) {
  for (int round = 0; round < 200; ++round) {
    const Cancellation stop;
    std::thread canceller([&] { stop.cancel(); });
    {
      auto woken = std::make_unique<std::atomic<bool>>(false);
      std::optional<Cancellation::OnCancel> wake(std::in_place, stop, [&] { *woken = true; });
      wake.reset();
      woken.reset();
    }
    canceller.join();
    EXPECT_TRUE(stop.isCancelled());
  }
}

}  // namespace
}  // namespace tamzo::testing
