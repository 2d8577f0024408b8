#pragma once

#include <algorithm>
#include <string_view>

namespace tamzo {

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
