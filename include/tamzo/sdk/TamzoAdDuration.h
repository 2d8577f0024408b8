#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"

namespace tamzo {

/// A VAST time value: how long a Linear is. Immutable, so any number of threads may read it.
class TAMZO_EXPORT TamzoAdDuration {
 public:
  /// Reads a clock time, "HH:MM:SS" or "HH:MM:SS.mmm" with white space at either end. Anything
  /// else is kept as text and counts 0 seconds: a percentage says nothing without a duration to
  /// take it of, and a guess at garbage would be worse than none.
  static std::shared_ptr<TamzoAdDuration> initFromString(Text text);

  /// Whole seconds; a fraction is dropped, as it is from a skip offset.
  std::int64_t durationInSeconds() const noexcept { return seconds_; }

  /// The text as it was given.
  const Text& text() const noexcept TAMZO_LIFETIMEBOUND { return text_; }

 private:
  TamzoAdDuration(Text text, std::int64_t seconds) noexcept
      : text_(std::move(text)), seconds_(seconds) {}

  Text text_;
  std::int64_t seconds_;
};

}  // namespace tamzo
