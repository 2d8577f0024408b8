#pragma once

#include <cstddef>
#include <functional>
#include <optional>

#include "tools/BatchLine.h"

namespace tamzo::command {

/// One piece of work, which may throw.
struct Work {
  std::function<BatchAnswer()> run;
  std::size_t bytes = 0;  ///< what it holds until it is done
};

/// Gives out one piece of work after another, on one thread at a time but not always the same one.
class WorkSource {
 public:
  WorkSource() = default;
  WorkSource(const WorkSource&) = delete;
  WorkSource& operator=(const WorkSource&) = delete;
  virtual ~WorkSource() = default;

  /// Nothing at the end. May wait, and may throw; after std::bad_alloc it may be asked again.
  virtual std::optional<Work> next() = 0;
  /// True when next() would not wait. May throw.
  virtual bool isReady() { return true; }
  /// Ends the wait of next() from another thread.
  virtual void stop() noexcept {}
};

struct AnswerPlan {
  unsigned threads = 1;
  bool inOrder = true;  ///< false: each answer is handed out as soon as it is there
  /// What work and answers that wait for one before them may hold together. Each thread may have a
  /// piece at any rate, however large.
  std::size_t windowBytes = std::size_t{64} << 20U;
};

/// Does the work on that many threads, or on fewer where the system gives no more, and hands the
/// answers out one at a time, each as soon as it may go. What holds up one piece holds up no other,
/// until the window is full. The first exception of source, work or `take` ends the run: what is
/// under way is done, nothing is taken any more where `take` or work threw it, and it is thrown
/// here.
void answerAll(WorkSource& source, const AnswerPlan& plan,
               const std::function<void(BatchAnswer)>& take);

}  // namespace tamzo::command
