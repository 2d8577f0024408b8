#include "base/WhiteSpace.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/Utf8.h"

namespace tamzo {
namespace {

constexpr bool isNewline(char32_t c) noexcept {
  return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

constexpr bool isWhiteSpace(char32_t c) noexcept {
  return isNewline(c) || c == '\t' || c == ' ' || c == 0xA0 || c == 0x1680 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x202F || c == 0x205F || c == 0x3000;
}

// The first bytes of white-space characters: any other need not be decoded.
constexpr auto kMayStartWhiteSpace = [] {
  std::array<bool, 256> may{};
  for (const unsigned byte :
       {0x09U, 0x0AU, 0x0BU, 0x0CU, 0x0DU, 0x20U, 0xC2U, 0xE1U, 0xE2U, 0xE3U}) {
    may[byte] = true;
  }
  return may;
}();

// Bytes of the white-space character that ends the text; 0 when another does.
std::size_t whiteSpaceAtEnd(std::string_view text) noexcept {
  constexpr std::size_t kLongest = 3;
  for (std::size_t length = 1; length <= std::min(kLongest, text.size()); ++length) {
    if (whiteSpaceAt(text, text.size() - length) == length) {
      return length;
    }
  }
  return 0;
}

}  // namespace

std::size_t whiteSpaceAt(std::string_view text, std::size_t at) noexcept {
  if (at >= text.size() || !kMayStartWhiteSpace[static_cast<std::uint8_t>(text[at])]) {
    return 0;
  }
  const Character character = characterAt(text, at);
  return isWhiteSpace(character.value) ? character.bytes : 0;
}

std::size_t findWhiteSpace(std::string_view text, std::size_t from) noexcept {
  std::size_t at = from;
  while (at < text.size() && whiteSpaceAt(text, at) == 0) {
    ++at;
  }
  return at;
}

std::string_view withoutLeadingWhiteSpace(std::string_view text) noexcept {
  while (const std::size_t length = whiteSpaceAt(text, 0)) {
    text.remove_prefix(length);
  }
  return text;
}

std::string_view trimWhiteSpace(std::string_view text) noexcept {
  text = withoutLeadingWhiteSpace(text);
  while (const std::size_t length = whiteSpaceAtEnd(text)) {
    text.remove_suffix(length);
  }
  return text;
}

std::string removeNewlines(std::string_view text) {
  std::string kept;
  kept.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const Character character = characterAt(text, at);
    if (!isNewline(character.value)) {
      kept += text.substr(at, character.bytes);
    }
    at += character.bytes;
  }
  return kept;
}

}  // namespace tamzo
