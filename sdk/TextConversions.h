#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "xml/Export.h"

namespace tamzo {

// How the system reads numbers and flags from texts, and what it takes for white space. Nothing
// here depends on the C locale, and every function takes any bytes whatever.

/// Bytes of the white-space character (Unicode's White_Space) that begins at `at`; 0 for any other.
TAMZO_EXPORT std::size_t whiteSpaceAt(std::string_view text, std::size_t at) noexcept;

/// Where the first white-space character at or after `from` begins; the text's size when none does.
TAMZO_EXPORT std::size_t findWhiteSpace(std::string_view text, std::size_t from) noexcept;

/// The text without white space and newlines at both ends.
TAMZO_EXPORT std::string_view trimWhiteSpace(std::string_view text) noexcept;

/// The text without any newline character: U+000A to U+000D, U+0085, U+2028 and U+2029.
TAMZO_EXPORT std::string removeNewlines(std::string_view text);

/// True when the text has fewer than `count` UTF-16 code units.
TAMZO_EXPORT bool isShorterThan(std::string_view text, std::size_t count) noexcept;

/// Leading white space, an optional sign, decimal digits; what follows is ignored. 0 when no
/// number begins the text. Clamped to the range of the type.
TAMZO_EXPORT std::int32_t integerValue(std::string_view text) noexcept;

/// True when, after leading white space, an optional sign and leading zeros, the text goes on with
/// "Y", "y", "T", "t" or a digit from 1 to 9.
TAMZO_EXPORT bool boolValue(std::string_view text) noexcept;

/// Leading white space, then a decimal floating-point number with optional sign, fraction and
/// exponent; what follows is ignored. 0.0 when there is none: no hexadecimal, no "inf", no "nan".
/// A number too large for the type gives infinity.
TAMZO_EXPORT double doubleValue(std::string_view text) noexcept;

/// As doubleValue, read in single precision.
TAMZO_EXPORT float floatValue(std::string_view text) noexcept;

}  // namespace tamzo
