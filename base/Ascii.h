#pragma once

#include <algorithm>
#include <string_view>

namespace tamzo {

constexpr bool isAsciiDigit(char c) noexcept { return c >= '0' && c <= '9'; }
constexpr bool isAsciiLetter(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool isAsciiAlphanumeric(char c) noexcept { return isAsciiLetter(c) || isAsciiDigit(c); }
constexpr bool isBeyondAscii(char c) noexcept {
  return (static_cast<unsigned char>(c) & 0x80U) != 0;
}

constexpr char asciiLower(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Equal but for the case of ASCII letters, whatever the locale is.
constexpr bool equalsInAnyCase(std::string_view a, std::string_view b) noexcept {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return asciiLower(x) == asciiLower(y);
         });
}

}  // namespace tamzo
