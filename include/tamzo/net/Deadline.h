#pragma once

#include <chrono>
#include <limits>

namespace tamzo {

/// A moment on the steady clock at which something has taken too long, or never. A plain value.
class Deadline {
 public:
  /// Never.
  Deadline() noexcept = default;

  /// That many seconds from now. More than a century is never; 0, less than 0 and NaN are at once.
  static Deadline in(double seconds) noexcept {
    Deadline deadline;
    if (!(seconds > kMostSeconds)) {
      const bool isInTheFuture = seconds > 0.0;  // NaN is not
      deadline.at_ = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(isInTheFuture ? seconds : 0));
    }
    return deadline;
  }

  /// True for a deadline that never comes.
  bool isNever() const noexcept { return at_ == Clock::time_point::max(); }
  /// True from that moment on.
  bool isPast() const noexcept { return !isNever() && Clock::now() >= at_; }
  /// The seconds until then: 0 when it is past, infinity for never.
  double secondsLeft() const noexcept {
    if (isNever()) {
      return std::numeric_limits<double>::infinity();
    }
    const double left = std::chrono::duration<double>(at_ - Clock::now()).count();
    return left > 0.0 ? left : 0.0;
  }
  /// The sooner of the two.
  Deadline orSooner(const Deadline& other) const noexcept {
    return other.at_ < at_ ? other : *this;
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr double kMostSeconds = 100.0 * 365 * 24 * 3600;

  Clock::time_point at_ = Clock::time_point::max();
};

}  // namespace tamzo
