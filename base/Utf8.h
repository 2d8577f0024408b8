#pragma once

#include <cstddef>
#include <string_view>

namespace tamzo {

/// What some put in front of a text in UTF-8.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// UTF-8, as far as the system looks into it. Every function takes any bytes whatever.

/// How many bytes a byte order mark takes at the start of the text; 0 where there is none.
constexpr std::size_t byteOrderMarkOf(std::string_view text) noexcept {
  return text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
}

/// False for a byte that goes on with a character.
constexpr bool startsCharacter(char c) noexcept {
  return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
}

/// The beginning of a text, of at most so many bytes, that cuts no character in two.
constexpr std::string_view beginningOf(std::string_view text, std::size_t bytes) noexcept {
  std::size_t end = bytes < text.size() ? bytes : text.size();
  while (end < text.size() && end > 0 && !startsCharacter(text[end])) {
    --end;
  }
  return text.substr(0, end);
}

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
