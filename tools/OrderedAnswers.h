#pragma once

#include <functional>
#include <optional>

#include "tools/BatchLine.h"

namespace tamzo::command {

/// One piece of work, which may throw.
using Work = std::function<BatchAnswer()>;

/// Gives out one piece of work after another, on one thread at a time but not always the same one.
class WorkSource {
 public:
  WorkSource() = default;
  WorkSource(const WorkSource&) = delete;
  WorkSource& operator=(const WorkSource&) = delete;
  virtual ~WorkSource() = default;

  /// Nothing at the end. May wait, and may throw.
  virtual std::optional<Work> next() = 0;
  /// Ends the wait of next() from another thread.
  virtual void stop() noexcept {}
};

/// Does the work on `threads` threads, or on fewer where the system gives no more, and hands the
/// answers out in the order of the work, each as soon as it and all before it are there, and one at
/// a time. At most a few pieces a thread are under way, so that a long stream takes no more memory
/// than a short one. The first exception of source, work or `take` ends the run: what is under way
/// is done, nothing is taken any more where `take` threw it, and it is thrown here.
void answerInOrder(WorkSource& source, unsigned threads,
                   const std::function<void(BatchAnswer)>& take);

}  // namespace tamzo::command
