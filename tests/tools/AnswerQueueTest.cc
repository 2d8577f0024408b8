#include "tools/AnswerQueue.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tamzo::testing {
namespace {

using command::answerAll;
using command::AnswerPlan;
using command::BatchAnswer;
using command::Work;

constexpr auto kLongEnough = std::chrono::seconds(20);

// A count that one thread raises and another waits for.
class Count {
 public:
  void raise() {
    const std::lock_guard lock(mutex_);
    ++value_;
    raised_.notify_all();
  }

  // False when it does not come to that in good time.
  bool waitFor(std::size_t value) {
    std::unique_lock lock(mutex_);
    return raised_.wait_for(lock, kLongEnough, [&] { return value_ >= value; });
  }

  std::size_t value() {
    const std::lock_guard lock(mutex_);
    return value_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable raised_;
  std::size_t value_ = 0;
};

using Task = std::function<BatchAnswer()>;

// Gives out `count` pieces of work, made by `make` on the thread that asks.
class Source : public command::WorkSource {
 public:
  Source(std::size_t count, std::function<Task(std::size_t)> make)
      : count_(count), make_(std::move(make)) {}

  std::optional<Work> next() override {
    return isStopped || given == count_ ? std::nullopt : std::optional(Work{make_(given++), bytes});
  }
  bool isReady() override { return isAlwaysReady; }
  void stop() noexcept override { isStopped = true; }
  // False when nobody stops it in good time.
  bool waitForStop() const {
    const auto end = std::chrono::steady_clock::now() + kLongEnough;
    while (!isStopped && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return isStopped;
  }

  std::size_t given = 0;
  std::size_t bytes = 0;  // of each
  bool isAlwaysReady = true;
  std::atomic<bool> isStopped{false};

 private:
  std::size_t count_;
  std::function<Task(std::size_t)> make_;
};

BatchAnswer answer(std::size_t number) { return {std::to_string(number), "", 0}; }

std::vector<std::string> numbers(std::size_t count) {
  std::vector<std::string> texts;
  while (texts.size() < count) {
    texts.push_back(std::to_string(texts.size()));
  }
  return texts;
}

TEST(AnswerQueueTest, AnswersComeInTheOrderOfTheWork) {
  for (const unsigned threads : {1U, 2U, 8U, 64U}) {
    Source source(500, [](std::size_t i) {
      return [i] {
        std::this_thread::sleep_for(std::chrono::microseconds(i * 7919 % 500));
        return answer(i);
      };
    });
    std::vector<std::string> taken;
    answerAll(source, {threads}, [&](BatchAnswer a) { taken.push_back(a.line); });
    EXPECT_EQ(taken, numbers(500)) << threads;
    EXPECT_FALSE(source.isStopped);
  }
}

TEST(AnswerQueueTest, ThereMayBeNoWork) {
  Source source(0, nullptr);
  answerAll(source, {4}, [](BatchAnswer) { FAIL(); });
}

TEST(AnswerQueueTest, AsManyThreadsWorkAtOnceAsAreAskedFor) {
  for (const unsigned threads : {1U, 3U, 16U}) {
    Count started;
    std::atomic<unsigned> atOnce{0};
    std::atomic<bool> areTooMany{false};
    Source source(threads * 3, [&](std::size_t i) {
      return [&, i] {
        areTooMany = areTooMany || ++atOnce > threads;
        started.raise();
        // The first ones wait for each other, which less threads would never end.
        EXPECT_TRUE(i >= threads || started.waitFor(threads)) << threads;
        --atOnce;
        return answer(i);
      };
    });
    answerAll(source, {threads}, [](BatchAnswer) {});
    EXPECT_FALSE(areTooMany) << threads;
  }
}

TEST(AnswerQueueTest, OnlySoManyBytesAreUnderWay) {
  Count given;
  Source source(1000, [&](std::size_t i) {
    given.raise();
    return [&given, i] {
      if (i == 0) {  // all others wait behind the first
        EXPECT_TRUE(given.waitFor(100));
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_LE(given.value(), 120U);
      }
      return BatchAnswer{std::string(10'000, 'x'), "", 0};
    };
  });
  source.bytes = 10'000;
  std::size_t taken = 0;
  answerAll(source, {4, true, 1'050'000}, [&](BatchAnswer) { ++taken; });
  EXPECT_EQ(taken, 1000U);
}

TEST(AnswerQueueTest, WhatIsLargerThanTheWindowIsDoneAllTheSame) {
  for (const unsigned threads : {1U, 4U}) {
    Source source(20, [](std::size_t i) { return [i] { return answer(i); }; });
    source.bytes = 1000;
    std::vector<std::string> taken;
    answerAll(source, {threads, true, 10}, [&](BatchAnswer a) { taken.push_back(a.line); });
    EXPECT_EQ(taken, numbers(20)) << threads;
  }
}

TEST(AnswerQueueTest, ASlowPieceHoldsUpNoOther) {
  constexpr std::size_t kPieces = 5000;
  Count done;
  Source source(kPieces, [&](std::size_t i) {
    return [&done, i] {
      EXPECT_TRUE(i != 0 || done.waitFor(kPieces - 1)) << "others wait for the first";
      done.raise();
      return answer(i);
    };
  });
  std::vector<std::string> taken;
  answerAll(source, {2}, [&](BatchAnswer a) { taken.push_back(a.line); });
  EXPECT_EQ(taken, numbers(kPieces));
}

TEST(AnswerQueueTest, WithoutOrderNothingWaitsForWhatCameBefore) {
  constexpr std::size_t kPieces = 500;
  Count handedOut;
  Source source(kPieces, [&](std::size_t i) {
    return [&handedOut, i] {
      EXPECT_TRUE(i != 0 || handedOut.waitFor(kPieces - 1)) << "answers wait for the first";
      return answer(i);
    };
  });
  std::vector<std::string> taken;
  answerAll(source, {2, false}, [&](BatchAnswer a) {
    taken.push_back(a.line);
    handedOut.raise();
  });
  EXPECT_EQ(taken.back(), "0");
  std::sort(taken.begin(), taken.end());
  std::vector<std::string> all = numbers(kPieces);
  std::sort(all.begin(), all.end());
  EXPECT_EQ(taken, all);
}

TEST(AnswerQueueTest, ThreadsAreNotWokenForNothing) {
  constexpr std::size_t kPieces = 2000;
  constexpr unsigned kThreads = 64;
  Source source(kPieces, [](std::size_t i) { return [i] { return answer(i); }; });
  source.isAlwaysReady = false;  // each comes alone
  const auto switches = [] {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_nvcsw;
  };
  const long before = switches();
  answerAll(source, {kThreads}, [](BatchAnswer) {});
  EXPECT_LT(switches() - before, static_cast<long>(kPieces * kThreads / 8));
}

TEST(AnswerQueueTest, AnAnswerDoesNotWaitForMoreWork) {
  for (const unsigned threads : {1U, 2U, 4U}) {
    Count taken;
    Source source(50, [&](std::size_t i) {
      EXPECT_TRUE(taken.waitFor(i)) << "of the answers before " << i << " one is held back";
      return [i] { return answer(i); };
    });
    source.isAlwaysReady = false;
    answerAll(source, {threads}, [&](BatchAnswer) { taken.raise(); });
  }
}

TEST(AnswerQueueTest, AnAnswerThatIsReadyWaitsForNothing) {
  // Two threads and eight pieces under way: the first is done when the last has begun, and then
  // six more are ready, which both the last and the input wait for.
  Count begun;
  Count taken;
  Source source(20, [&](std::size_t i) {
    EXPECT_TRUE(i != 8 || taken.waitFor(7)) << "the input is waited for";
    return [&begun, &taken, i] {
      begun.raise();
      EXPECT_TRUE(i != 0 || begun.waitFor(8));
      EXPECT_TRUE(i != 7 || taken.waitFor(7)) << "other work is waited for";
      return answer(i);
    };
  });
  source.isAlwaysReady = false;
  answerAll(source, {2}, [&](BatchAnswer) { taken.raise(); });
  EXPECT_EQ(taken.value(), 20U);
}

TEST(AnswerQueueTest, AFailedOutputEndsTheRun) {
  for (const unsigned threads : {1U, 4U}) {
    constexpr std::size_t kEnough = 60;  // beyond these, work comes when the run has ended
    Source source(1'000'000, [&source](std::size_t i) {
      EXPECT_TRUE(i < kEnough || source.waitForStop());
      return [i] { return answer(i); };
    });
    std::vector<std::string> taken;
    const auto take = [&](BatchAnswer a) {
      if (a.line == "10") {
        throw std::runtime_error("full");
      }
      taken.push_back(a.line);
    };
    EXPECT_THROW(answerAll(source, {threads}, take), std::runtime_error);
    EXPECT_EQ(taken, numbers(10)) << "nothing is taken after it";
    EXPECT_TRUE(source.isStopped);
    EXPECT_LE(source.given, kEnough + 1);
  }
}

TEST(AnswerQueueTest, WorkThatThrowsEndsTheRun) {
  Source source(1'000'000, [](std::size_t i) -> Task {
    return [i] { return i == 10 ? throw std::bad_alloc() : answer(i); };
  });
  std::vector<std::string> taken;
  EXPECT_THROW(answerAll(source, {4}, [&](BatchAnswer a) { taken.push_back(a.line); }),
               std::bad_alloc);
  EXPECT_EQ(taken, numbers(10));
}

TEST(AnswerQueueTest, WhatCameBeforeAFailedInputIsAnswered) {
  Source source(100, [](std::size_t i) -> Task {
    return i == 10 ? throw std::runtime_error("gone") : Task([i] { return answer(i); });
  });
  std::vector<std::string> taken;
  EXPECT_THROW(answerAll(source, {4}, [&](BatchAnswer a) { taken.push_back(a.line); }),
               std::runtime_error);
  EXPECT_EQ(taken, numbers(10));
}

// Gives out its work only while less than `most` of it is held, as if there were no memory for
// more.
class ScarceSource : public command::WorkSource {
 public:
  explicit ScarceSource(std::size_t most) : most_(most) {}

  std::optional<Work> next() override {
    if (given_ == kCount) {
      return std::nullopt;
    }
    if (given_ - taken >= most_) {
      ++refusals;
      throw std::bad_alloc();
    }
    return Work{[i = given_++] { return answer(i); }};
  }

  static constexpr std::size_t kCount = 100;
  std::atomic<std::size_t> taken{0};
  std::size_t refusals = 0;

 private:
  std::size_t most_;
  std::size_t given_ = 0;
};

TEST(AnswerQueueTest, InputThatMemoryHasNoRoomForWaitsUntilThereIsSome) {
  for (const unsigned threads : {1U, 4U}) {
    ScarceSource source(3);
    std::vector<std::string> taken;
    answerAll(source, {threads}, [&](BatchAnswer a) {
      taken.push_back(a.line);
      ++source.taken;
    });
    EXPECT_EQ(taken, numbers(ScarceSource::kCount)) << threads;
    EXPECT_GT(source.refusals, 0U);
  }
}

TEST(AnswerQueueTest, WithoutMemoryForOnePieceTheRunEnds) {
  ScarceSource source(0);
  EXPECT_THROW(answerAll(source, {4}, [](BatchAnswer) { FAIL(); }), std::bad_alloc);
}

}  // namespace
}  // namespace tamzo::testing
