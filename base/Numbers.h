#pragma once

#include <cstdint>
#include <string_view>

namespace tamzo {

// How the system reads numbers and flags from texts. Nothing here depends on the C locale, and
// every function takes any bytes whatever.

/// Leading white space, an optional sign, decimal digits; what follows is ignored. 0 when no
/// number begins the text. Clamped to the range of the type.
std::int32_t integerValue(std::string_view text) noexcept;

/// True when, after leading white space, an optional sign and leading zeros, the text goes on with
/// "Y", "y", "T", "t" or a digit from 1 to 9.
bool boolValue(std::string_view text) noexcept;

/// Leading white space, then a decimal floating-point number with optional sign, fraction and
/// exponent; what follows is ignored. 0.0 when there is none: no hexadecimal, no "inf", no "nan".
/// A number too large for the type gives infinity.
double doubleValue(std::string_view text) noexcept;

/// As doubleValue, read in single precision.
float floatValue(std::string_view text) noexcept;

}  // namespace tamzo
