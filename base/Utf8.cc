#include "base/Utf8.h"

#include <utf8.h>

#include <cstdint>

namespace tamzo {

bool isUtf8(std::string_view bytes) noexcept { return utf8::is_valid(bytes.begin(), bytes.end()); }

Character characterAt(std::string_view text, std::size_t at) noexcept {
  if (static_cast<std::uint8_t>(text[at]) < 0x80) {
    return {static_cast<char32_t>(text[at]), 1};
  }
  // What is longer than any character holds this one whole. No exception is thrown for bad bytes,
  // which may come in masses.
  constexpr std::size_t kLongest = 4;
  const std::string_view rest = text.substr(at, kLongest);
  if (utf8::find_invalid(rest.begin(), rest.end()) == rest.begin()) {
    return {};
  }
  const char* end = rest.data();
  const auto value = static_cast<char32_t>(utf8::unchecked::next(end));
  return {value, static_cast<std::size_t>(end - rest.data())};
}

bool isShorterThan(std::string_view text, std::size_t count) noexcept {
  constexpr char32_t kFirstSurrogatePair = 0x10000;
  std::size_t units = 0;
  for (std::size_t at = 0; at < text.size() && units < count;) {
    const Character character = characterAt(text, at);
    units += character.value >= kFirstSurrogatePair ? 2 : 1;
    at += character.bytes;
  }
  return units < count;
}

}  // namespace tamzo
