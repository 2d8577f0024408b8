#include "tamzo/net/Cancellation.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

namespace tamzo {

struct Cancellation::State {
  std::atomic<bool> isCancelled{false};
  // Held while the waiting are woken, so that none of them can go meanwhile.
  std::mutex mutex;
  std::vector<const OnCancel*> waiting;
};

Cancellation::Cancellation() : state_(std::make_shared<State>()) {}

void Cancellation::cancel() const noexcept {
  if (state_ == nullptr) {
    return;
  }
  const std::lock_guard lock(state_->mutex);
  if (!state_->isCancelled.exchange(true)) {
    for (const OnCancel* each : state_->waiting) {
      each->wake_();
    }
  }
}

bool Cancellation::isCancelled() const noexcept { return state_ != nullptr && state_->isCancelled; }

Cancellation::OnCancel::OnCancel(const Cancellation& cancellation, std::function<void()> wake)
    : state_(cancellation.state_), wake_(std::move(wake)) {
  if (state_ == nullptr) {
    return;
  }
  const std::lock_guard lock(state_->mutex);
  if (state_->isCancelled) {
    wake_();
  } else {
    state_->waiting.push_back(this);
  }
}

Cancellation::OnCancel::~OnCancel() {
  if (state_ == nullptr) {
    return;
  }
  const std::lock_guard lock(state_->mutex);
  std::erase(state_->waiting, this);
}

}  // namespace tamzo
