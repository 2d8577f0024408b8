#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tamzo {

// What the system takes for white space and for newlines. Every function takes any bytes whatever.

/// Bytes of the white-space character (Unicode's White_Space) that begins at `at`; 0 for any other,
/// and at the end of the text.
std::size_t whiteSpaceAt(std::string_view text, std::size_t at) noexcept;

/// Where the first white-space character at or after `from` begins; the text's size when none does.
std::size_t findWhiteSpace(std::string_view text, std::size_t from) noexcept;

/// The text without white space in front.
std::string_view withoutLeadingWhiteSpace(std::string_view text) noexcept;

/// The text without white space and newlines at both ends.
std::string_view trimWhiteSpace(std::string_view text) noexcept;

/// The text without any newline character: U+000A to U+000D, U+0085, U+2028 and U+2029.
std::string removeNewlines(std::string_view text);

}  // namespace tamzo
