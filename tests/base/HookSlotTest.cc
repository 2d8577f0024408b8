#include "base/HookSlot.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace tamzo::testing {
namespace {

TEST(HookSlotTest, HoldsAValueFromTheBeginning) {
  const HookSlot<std::string> text;
  ASSERT_NE(text.get(), nullptr);
  EXPECT_EQ(*text.get(), "");
  const HookSlot<std::function<int()>> function;
  EXPECT_FALSE(*function.get());
  const HookSlot<std::shared_ptr<int>> pointer;
  ASSERT_NE(pointer.get(), nullptr);
  EXPECT_EQ(*pointer.get(), nullptr);
}

TEST(HookSlotTest, GivesWhatWasSetLast) {
  HookSlot<std::string> slot;
  slot.set("one");
  slot.set("two");
  EXPECT_EQ(*slot.get(), "two");
  EXPECT_EQ(slot.get(), slot.get()) << "one object for all who read";
}

TEST(HookSlotTest, AReaderKeepsWhatItGot) {
  HookSlot<std::string> slot;
  slot.set("one");
  const auto before = slot.get();
  slot.set("two");
  EXPECT_EQ(*before, "one");
}

TEST(HookSlotTest, LetsGoOfAValueOnceNobodyReadsIt) {
  HookSlot<std::shared_ptr<int>> slot;
  auto value = std::make_shared<int>(1);
  const std::weak_ptr<int> watch = value;
  slot.set(std::move(value));
  auto reader = slot.get();
  slot.set(nullptr);
  EXPECT_FALSE(watch.expired()) << "it is being read";
  reader.reset();
  EXPECT_TRUE(watch.expired());
}

TEST(HookSlotTest, AValueMayAskTheSlotWhileItIsDestroyed) {
  struct Asking {
    std::function<void()> onDestruction;
    ~Asking() {
      if (onDestruction) {
        onDestruction();
      }
    }
  };
  HookSlot<std::shared_ptr<Asking>> slot;
  bool hasNext = false;
  auto asking = std::make_shared<Asking>();
  asking->onDestruction = [&] { hasNext = *slot.get() == nullptr; };
  slot.set(std::move(asking));
  slot.set(nullptr);  // destroyed under the lock it would wait for itself
  EXPECT_TRUE(hasNext);
}

TEST(HookSlotTest, IsSafeFromSeveralThreads) {
  HookSlot<std::string> slot;
  slot.set(std::string(40, 'a'));
  std::atomic<int> torn{0};
  std::vector<std::thread> threads;
  for (const char letter : {'a', 'b', 'c', 'd'}) {
    threads.emplace_back([&slot, &torn, letter] {
      for (int i = 0; i < 2000; ++i) {
        const auto seen = slot.get();
        torn += *seen == std::string(40, seen->front()) ? 0 : 1;
        slot.set(std::string(40, letter));
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(torn, 0);
}

}  // namespace
}  // namespace tamzo::testing
