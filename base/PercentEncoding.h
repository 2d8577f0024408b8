#pragma once

#include <cstdint>
#include <string>

namespace tamzo {

/// Appends one byte as "%" and two capital hexadecimal digits.
inline void appendPercentEncoded(std::string& out, char c) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  const auto byte = static_cast<std::uint8_t>(c);
  const char escape[] = {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
  out.append(escape, sizeof escape);
}

}  // namespace tamzo
