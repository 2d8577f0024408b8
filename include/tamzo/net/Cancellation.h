#pragma once

#include <functional>
#include <memory>

#include "tamzo/base/Export.h"

namespace tamzo {

/// Stops what was given it, from any thread. Copies are handles of one cancellation.
///
///     const tamzo::Cancellation stop;
///     tamzo::ParseOptions options;
///     options.cancellation = stop;
///     // on another thread: stop.cancel();
///
/// It stays cancelled for good. Every function may be called from any thread, not from a signal
/// handler.
class TAMZO_EXPORT Cancellation {
  struct State;

 public:
  /// A new one, which nobody has cancelled. Throws std::bad_alloc.
  Cancellation();
  /// One that nobody can cancel; it costs nothing.
  static Cancellation never() noexcept { return Cancellation(nullptr); }

  /// Cancels, once and for good, and wakes what waits: calls each OnCancel there is on this thread.
  void cancel() const noexcept;
  /// True once it is cancelled.
  bool isCancelled() const noexcept;

  /// Calls `wake` when a cancellation comes, for as long as it lives: on the thread that cancels,
  /// or in the constructor where that is over already. When the destructor returns, no call is
  /// under way. `wake` must be short, must not throw, and touches no OnCancel of this cancellation.
  class TAMZO_EXPORT OnCancel {
   public:
    /// Throws std::bad_alloc.
    OnCancel(const Cancellation& cancellation, std::function<void()> wake);
    ~OnCancel();
    /// Not copied: it is registered where it stands.
    OnCancel(const OnCancel&) = delete;
    OnCancel& operator=(const OnCancel&) = delete;

   private:
    friend class Cancellation;
    std::shared_ptr<State> state_;
    std::function<void()> wake_;
  };

 private:
  explicit Cancellation(std::shared_ptr<State> state) noexcept : state_(std::move(state)) {}

  std::shared_ptr<State> state_;
};

}  // namespace tamzo
