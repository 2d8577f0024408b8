#include "tools/OrderedAnswers.h"

#include <tbb/parallel_pipeline.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
// TBB's library is compiled without the sanitizer, which sees neither its hand-overs nor how it
// reuses memory. No report, then, of what the library itself clears or copies, nor of what its
// headers store in one thread and load in another. What this project does in a filter has frames of
// its own above TBB's, and is reported.
extern "C" const char* __tsan_default_suppressions() {
  return "called_from_lib:libtbb.so\n"
         "race_top:^tbb::detail::d1::concrete_filter<\n";
}
#endif
#endif

namespace tamzo::command {
namespace {

constexpr std::size_t kTokensPerThread = 4;

/// One piece of work on its way. Only one thread has it at a time, and TBB orders its hand-overs;
/// the flag orders them once more for ThreadSanitizer, which does not see into TBB.
struct Token {
  Work work;
  BatchAnswer answer;
  std::exception_ptr failure;

  void handOver() { isHandedOver_.store(true, std::memory_order_release); }
  void takeOver() { isHandedOver_.load(std::memory_order_acquire); }

 private:
  std::atomic<bool> isHandedOver_{false};
};

/// The tokens of a run, each of which is in use from the input to the output.
class Tokens {
 public:
  explicit Tokens(std::size_t count) : tokens_(count) {}

  std::size_t size() const { return tokens_.size(); }

  /// Waits for the next one in turn to be free.
  Token& take() {
    std::unique_lock lock(mutex_);
    freed_.wait(lock, [this] { return taken_ - freedCount_ < tokens_.size(); });
    return tokens_[taken_++ % tokens_.size()];
  }

  /// Frees the one that was taken first.
  void free() {
    {
      const std::lock_guard lock(mutex_);
      ++freedCount_;
    }
    freed_.notify_one();
  }

 private:
  std::vector<Token> tokens_;
  std::mutex mutex_;
  std::condition_variable freed_;
  std::size_t taken_ = 0;
  std::size_t freedCount_ = 0;
};

/// The filters of the pipeline and what they share. No exception leaves them: TBB may have been
/// built with another standard library.
class Run {
 public:
  Run(WorkSource& source, unsigned threads, const std::function<void(BatchAnswer)>& take)
      : source_(source), take_(take), tokens_(threads * kTokensPerThread) {}

  void doAll() noexcept {
    const auto input = [this](tbb::flow_control& control) { return nextToken(control); };
    const auto work = [this](Token* token) { return worked(token); };
    const auto output = [this](Token* token) { handOut(*token); };
    try {
      // TBB has more tokens than there are, so that it is here that a thread waits for one. In TBB
      // the thread that frees one would go for the input, and let the next answer lie meanwhile.
      tbb::parallel_pipeline(
          tokens_.size() + 2,
          tbb::make_filter<void, Token*>(tbb::filter_mode::serial_in_order, input) &
              tbb::make_filter<Token*, Token*>(tbb::filter_mode::parallel, work) &
              tbb::make_filter<Token*, void>(tbb::filter_mode::serial_in_order, output));
    } catch (...) {
      fail();
    }
  }

  void throwFailure() const {
    if (failure_) {
      std::rethrow_exception(failure_);
    }
  }

 private:
  // TBB runs one input at a time; the lock tells ThreadSanitizer so. Likewise with the output.
  Token* nextToken(tbb::flow_control& control) noexcept {
    const std::lock_guard lock(inputMutex_);
    Token& token = tokens_.take();
    try {
      std::optional<Work> work = isFailed_ ? std::nullopt : source_.next();
      if (work) {
        token.work = std::move(*work);
        token.handOver();
        return &token;
      }
    } catch (...) {
      fail();
    }
    control.stop();
    return nullptr;
  }

  Token* worked(Token* token) noexcept {
    token->takeOver();
    try {
      if (!isOutputOver_) {
        token->answer = token->work();
      }
    } catch (...) {
      token->failure = std::current_exception();
    }
    token->work = nullptr;
    token->handOver();
    return token;
  }

  void handOut(Token& token) noexcept {
    const std::lock_guard lock(outputMutex_);
    token.takeOver();
    try {
      if (token.failure) {
        std::rethrow_exception(std::exchange(token.failure, nullptr));
      }
      if (!isOutputOver_) {
        take_(std::move(token.answer));
      }
    } catch (...) {
      isOutputOver_ = true;
      fail();
    }
    tokens_.free();
  }

  // Notes the exception that is being handled, unless another came first, and ends the input.
  void fail() noexcept {
    if (!isFailed_.exchange(true)) {
      failure_ = std::current_exception();
    }
    source_.stop();
  }

  WorkSource& source_;
  const std::function<void(BatchAnswer)>& take_;
  Tokens tokens_;
  std::mutex inputMutex_;
  std::mutex outputMutex_;
  std::atomic<bool> isFailed_{false};
  std::atomic<bool> isOutputOver_{false};
  std::exception_ptr failure_;
};

// What goes wrong in TBB around a run is no matter: other threads carry it on.
template <typename Help>
void quietly(const Help& help) noexcept {
  try {
    help();
  } catch (...) {
  }
}

}  // namespace

void answerInOrder(WorkSource& source, unsigned threads,
                   const std::function<void(BatchAnswer)>& take) {
  Run run(source, threads, take);
  // The program would end where TBB cannot start a thread of its own, so that every place in the
  // arena is kept for one of these.
  tbb::task_arena arena(static_cast<int>(threads), threads);
  tbb::task_group group;
  arena.execute([&] { group.run([&run] { run.doAll(); }); });
  const auto help = [&] { arena.execute([&group] { group.wait(); }); };
  std::vector<std::thread> helpers;
  try {
    helpers.reserve(threads);
    while (helpers.size() + 1 < threads) {
      helpers.emplace_back([&help] { quietly(help); });
    }
  } catch (const std::exception&) {
    // Those that there are do it, be it this thread alone.
  }
  quietly(help);
  for (std::thread& helper : helpers) {
    helper.join();
  }
  run.throwFailure();
}

}  // namespace tamzo::command
