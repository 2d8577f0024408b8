#pragma once

#include <memory>
#include <mutex>
#include <utility>

namespace tamzo {

/// A class-level value that a host may set and any thread may read. A reader keeps what it got for
/// as long as it uses it, even while another thread sets something new; only the value that the
/// slot was made with is gone when the slot is. Only `set` takes memory.
template <typename T>
class HookSlot {
 public:
  void set(T value) {
    auto next = std::make_shared<const T>(std::move(value));
    const std::lock_guard lock(mutex_);
    value_.swap(next);
  }

  std::shared_ptr<const T> get() const noexcept {
    const std::lock_guard lock(mutex_);
    return value_;
  }

 private:
  mutable std::mutex mutex_;
  const T initial_{};
  std::shared_ptr<const T> value_{std::shared_ptr<const T>(), &initial_};
};

}  // namespace tamzo
