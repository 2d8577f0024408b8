#include "tools/CommandError.h"

#include <fmt/format.h>

#include <cstdint>
#include <cstdio>

namespace tamzo::command {

std::string printable(std::string_view text) {
  std::string out;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<std::uint8_t>(text[at]);
    const bool isC1 =
        byte == 0xC2 && at + 1 < text.size() && static_cast<std::uint8_t>(text[at + 1]) < 0xA0;
    if (isC1) {
      out += fmt::format("\\u{:04x}", static_cast<std::uint8_t>(text[++at]));
    } else if (byte < 0x20 || byte == 0x7F) {
      out += fmt::format("\\u{:04x}", byte);
    } else {
      out += text[at];
    }
  }
  return out;
}

void writeToStandardError(std::string_view text) noexcept {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

void complain(std::string_view message) {
  writeToStandardError("tamzo-vast: " + printable(message) + "\n");
}

void complainOfMemory() noexcept { writeToStandardError("tamzo-vast: out of memory\n"); }

}  // namespace tamzo::command
