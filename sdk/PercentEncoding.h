#pragma once

#include <cstdint>
#include <string>

namespace tamzo {

inline bool isAsciiAlphanumeric(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// Appends one byte as "%" and two capital hexadecimal digits.
inline void appendPercentEncoded(std::string& out, char c) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  const auto byte = static_cast<std::uint8_t>(c);
  out += '%';
  out += kDigits[byte >> 4U];
  out += kDigits[byte & 15U];
}

}  // namespace tamzo
