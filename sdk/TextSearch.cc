#include "sdk/TextSearch.h"

#include <cstdint>

namespace tamzo {
namespace {

constexpr std::size_t kBlock = 64;

constexpr std::uint8_t lower(char c) noexcept {
  const auto byte = static_cast<std::uint8_t>(c);
  return byte >= 'A' && byte <= 'Z' ? static_cast<std::uint8_t>(byte + 32) : byte;
}

// Bytes of the character at `at` that equals `letter` but for case; 0 when there is none.
std::size_t matchLetter(std::string_view text, std::size_t at, std::uint8_t letter) noexcept {
  if (at < text.size() && lower(text[at]) == letter) {
    return 1;
  }
  if (letter == 's' && text.substr(at, 2) == "\xC5\xBF") {  // U+017F, long s
    return 2;
  }
  return letter == 'k' && text.substr(at, 3) == "\xE2\x84\xAA" ? 3 : 0;  // U+212A, Kelvin sign
}

// The end of the word and its "=" when they begin at `at`; npos when they do not.
std::size_t matchAssignment(std::string_view text, std::string_view word, std::size_t at) noexcept {
  for (const char c : word) {
    const std::size_t length = at <= text.size() ? matchLetter(text, at, lower(c)) : 0;
    if (length == 0) {
      return std::string_view::npos;
    }
    at += length;
  }
  return at < text.size() && text[at] == '=' ? at + 1 : std::string_view::npos;
}

// True when some byte of the block and the one after it look like the two letters, case aside.
// A plain loop of known length without a branch: every compiler makes vector code of it.
bool mayHoldPair(const char* block, std::uint8_t first, std::uint8_t second) noexcept {
  std::uint8_t any = 0;
  for (std::size_t i = 0; i < kBlock; ++i) {
    const bool isFirst = (static_cast<std::uint8_t>(block[i]) | 0x20U) == first;
    const bool isSecond = (static_cast<std::uint8_t>(block[i + 1]) | 0x20U) == second;
    any |= static_cast<std::uint8_t>(isFirst & isSecond);
  }
  return any != 0;
}

bool isPlainLetter(char c) noexcept {
  const std::uint8_t letter = lower(c);
  return letter >= 'a' && letter <= 'z' && letter != 's' && letter != 'k';
}

}  // namespace

TextMatch findAssignment(std::string_view text, std::string_view word, std::size_t from) noexcept {
  const bool canSkip = word.size() >= 2 && isPlainLetter(word[0]) && isPlainLetter(word[1]);
  const std::uint8_t first = word.empty() ? 0 : lower(word[0]);
  std::size_t checkedTo = canSkip ? from : text.size();
  for (std::size_t at = from; at < text.size(); ++at) {
    if (at == checkedTo) {
      while (at + kBlock < text.size() &&
             !mayHoldPair(text.data() + at, lower(word[0]), lower(word[1]))) {
        at += kBlock;
      }
      checkedTo = at + kBlock;
    }
    if (canSkip && lower(text[at]) != first) {
      continue;
    }
    const std::size_t end = matchAssignment(text, word, at);
    if (end != std::string_view::npos) {
      return {at, end};
    }
  }
  return {};
}

}  // namespace tamzo
