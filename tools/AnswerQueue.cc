#include "tools/AnswerQueue.h"

#include <atomic>
#include <condition_variable>
#include <exception>
#include <iterator>
#include <list>
#include <mutex>
#include <new>
#include <thread>
#include <utility>
#include <vector>

namespace tamzo::command {
namespace {

// What is read at once while it is there: enough that reading is rare, and little enough that the
// first of it is soon begun.
constexpr std::size_t kPiecesAtOnce = 16;
constexpr std::size_t kBytesAtOnce = std::size_t{256} << 10U;

struct Piece {
  Work work;
  BatchAnswer answer;
  std::exception_ptr failure;
  bool isDone = false;

  std::size_t bytes() const {
    return sizeof(*this) + work.bytes + answer.line.size() + answer.problem.size();
  }
};
using Pieces = std::list<Piece>;

/// Threads that all do the same: hand out what is ready, or do what is next, or read on, whatever
/// is to be done, one at a time for the first and the last. A thread sleeps only where there is
/// nothing for it, and is woken only for something.
class Crew {
 public:
  Crew(WorkSource& source, const AnswerPlan& plan, const std::function<void(BatchAnswer)>& take)
      : source_(source), plan_(plan), take_(take) {}

  void work() noexcept {
    std::unique_lock lock(mutex_);
    while (!isOver()) {
      if (mayHandOut()) {
        handOut(lock);
      } else if (!mayRead() || !isLow() || !read(lock)) {
        doOneOrSleep(lock);
      }
    }
    changed_.notify_all();
  }

  void throwFailure() const {
    if (failure_) {
      std::rethrow_exception(failure_);
    }
  }

 private:
  using Lock = std::unique_lock<std::mutex>;

  bool isOver() const { return busy_ == 0 && (isOutputOver_ || (isAtEnd_ && pieces_.empty())); }
  bool mayHandOut() const {
    return !isHandingOut_ && !isOutputOver_ && !pieces_.empty() && pieces_.front().isDone;
  }
  bool hasWork() const { return waiting_ > 0 && !isOutputOver_; }
  bool mayRead() const {
    const bool hasRoom = held_ < plan_.windowBytes || pieces_.size() < plan_.threads;
    const bool hasMemory = !isShortOfMemory_ || holdsNothing();
    return !isReading_ && !isAtEnd_ && hasRoom && hasMemory;
  }
  // No memory will come from answers that go.
  bool holdsNothing() const { return pieces_.empty() && !isHandingOut_; }
  // Fewer pieces wait than there are threads that may come for one.
  bool isLow() const { return waiting_ < plan_.threads; }

  void doOneOrSleep(Lock& lock) noexcept {
    if (hasWork()) {
      doOne(lock);
    } else if (!isOver() && !mayHandOut() && !mayRead()) {
      sleep(lock);
    }
  }

  void sleep(Lock& lock) {
    ++asleep_;
    changed_.wait(lock);
    --asleep_;
  }

  // For what this thread leaves to the others.
  void wakeAnother() {
    if (asleep_ > 0 && (hasWork() || mayRead() || mayHandOut())) {
      changed_.notify_one();
    }
  }

  /// Runs without the lock. An exception ends the run.
  template <typename Action>
  void unlocked(Lock& lock, const Action& action) noexcept {
    ++busy_;
    lock.unlock();
    std::exception_ptr failure;
    try {
      action();
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    --busy_;
    if (failure) {
      fail(std::move(failure));
    }
  }

  /// Reads some pieces; none at the end, and where there is work and reading would have to wait for
  /// more. True when there are any.
  bool read(Lock& lock) noexcept {
    Pieces fresh;
    bool isEnd = false;
    const bool mayWait = waiting_ == 0;
    const bool isAlone = holdsNothing();
    isReading_ = true;
    wakeAnother();
    unlocked(lock, [&] {
      if (mayWait || source_.isReady()) {
        isEnd = !readInto(fresh, isAlone);
      }
    });
    isReading_ = false;
    isAtEnd_ = isAtEnd_ || isEnd;
    for (const Piece& piece : fresh) {
      held_ += piece.bytes();
      ++waiting_;
    }
    if (begun_ == pieces_.end() && !fresh.empty()) {
      begun_ = fresh.begin();
    }
    const bool hasAny = !fresh.empty();
    pieces_.splice(pieces_.end(), fresh);
    return hasAny;
  }

  // False at the end. Where memory runs out and others may free some, the rest is left for later.
  bool readInto(Pieces& fresh, bool isAlone) {
    std::size_t bytes = 0;
    do {
      try {
        Pieces one(1);
        std::optional<Work> next = source_.next();
        if (!next) {
          return false;
        }
        one.front().work = *std::move(next);
        bytes += one.front().bytes();
        fresh.splice(fresh.end(), one);
      } catch (const std::bad_alloc&) {
        isShortOfMemory_ = !(isAlone && fresh.empty());
        if (!isShortOfMemory_) {
          throw;
        }
        return true;
      }
    } while (fresh.size() < kPiecesAtOnce && bytes < kBytesAtOnce && source_.isReady());
    return true;
  }

  void doOne(Lock& lock) noexcept {
    const auto piece = begun_++;
    const std::size_t before = piece->bytes();
    --waiting_;
    wakeAnother();
    unlocked(lock, [&] {
      try {
        piece->answer = piece->work.run();
      } catch (...) {
        piece->failure = std::current_exception();
      }
      piece->work = {};
    });
    piece->isDone = true;
    held_ += piece->bytes();
    held_ -= before;
    if (!plan_.inOrder) {
      pieces_.splice(pieces_.begin(), pieces_, piece);
    }
  }

  void handOut(Lock& lock) noexcept {
    Pieces ready;
    std::size_t bytes = 0;
    while (!pieces_.empty() && pieces_.front().isDone) {
      bytes += pieces_.front().bytes();
      ready.splice(ready.end(), pieces_, pieces_.begin());
    }
    isHandingOut_ = true;
    wakeAnother();
    bool isDone = false;
    unlocked(lock, [&] {
      for (Piece& piece : ready) {
        if (piece.failure) {
          std::rethrow_exception(piece.failure);
        }
        take_(std::move(piece.answer));
      }
      ready.clear();
      isDone = true;
    });
    isHandingOut_ = false;
    isShortOfMemory_ = false;
    isOutputOver_ = isOutputOver_ || !isDone;
    held_ -= bytes;
  }

  // Ends the input, and notes the exception unless another came first.
  void fail(std::exception_ptr failure) noexcept {
    if (!failure_) {
      failure_ = std::move(failure);
    }
    isAtEnd_ = true;
    source_.stop();
  }

  WorkSource& source_;
  const AnswerPlan plan_;
  const std::function<void(BatchAnswer)>& take_;

  std::mutex mutex_;
  std::condition_variable changed_;
  Pieces pieces_;                           // in the order of handing out
  Pieces::iterator begun_ = pieces_.end();  // the first that nobody has begun
  std::size_t waiting_ = 0;                 // how many these are
  std::size_t held_ = 0;                    // bytes
  std::size_t busy_ = 0;                    // threads that are at something
  std::size_t asleep_ = 0;
  bool isReading_ = false;
  std::atomic<bool> isShortOfMemory_{false};  // until answers have been handed out
  bool isHandingOut_ = false;
  bool isAtEnd_ = false;
  bool isOutputOver_ = false;
  std::exception_ptr failure_;
};

}  // namespace

void answerAll(WorkSource& source, const AnswerPlan& plan,
               const std::function<void(BatchAnswer)>& take) {
  Crew crew(source, plan, take);
  std::vector<std::thread> helpers;
  try {
    helpers.reserve(plan.threads);
    while (helpers.size() + 1 < plan.threads) {
      helpers.emplace_back([&crew] { crew.work(); });
    }
  } catch (const std::exception&) {
    // Those that there are do it, be it this thread alone.
  }
  crew.work();
  for (std::thread& helper : helpers) {
    helper.join();
  }
  crew.throwFailure();
}

}  // namespace tamzo::command
