#pragma once

#include <cstdint>
#include <string_view>

namespace tamzo {

// The two readings of a clock time, "HH:MM:SS". They differ, and are meant to: players compare
// durations and tracker offsets with a position in the video, where a guess at garbage is worse
// than none; a skip offset decides when the viewer may leave, and ad servers that abbreviate it
// have always been read as far as they go.

/// Of durations and tracker offsets. Exactly three components of digits, a fraction of the seconds
/// allowed and dropped, white space at both ends ignored. Whole seconds; 0 for anything else.
std::int64_t clockSeconds(std::string_view text) noexcept;

/// Of skip offsets. Each component is read as an integer, so that what follows its digits is
/// ignored; more than three components are too. Milliseconds, in 32-bit arithmetic that wraps as
/// the SDK's always has; a fraction of a second is dropped. 0 for fewer than three components.
double lenientClockMillis(std::string_view text) noexcept;

}  // namespace tamzo
