#pragma once

#include <cstddef>
#include <string_view>

namespace tamzo {

/// What some put in front of a text in UTF-8.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// UTF-8, as far as the system looks into it. Every function takes any bytes whatever.

/// True when the bytes are well-formed UTF-8.
bool isUtf8(std::string_view bytes) noexcept;

/// The bytes that a text goes on with: a character, or the longest beginning of one (at least a
/// byte) where it is broken.
struct Utf8Sequence {
  std::size_t bytes = 1;
  bool isCharacter = false;
};
Utf8Sequence utf8SequenceAt(std::string_view text, std::size_t at) noexcept;

/// One character of a text.
struct Character {
  char32_t value = U'\uFFFD';  ///< U+FFFD for a byte that is no part of well-formed UTF-8
  std::size_t bytes = 1;
};

/// The character that begins at `at`, which must lie within the text.
Character characterAt(std::string_view text, std::size_t at) noexcept;

/// True when the text has fewer than `count` UTF-16 code units, in which the SDK counts.
bool isShorterThan(std::string_view text, std::size_t count) noexcept;

}  // namespace tamzo
