#include "base/AssignmentSearch.h"

namespace tamzo {
namespace {

constexpr bool isAscii(char c) noexcept { return (static_cast<unsigned char>(c) & 0x80U) == 0; }

constexpr char lower(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// Bytes of the character at the end of `text` that equals `letter` but for case; 0 when it does
// not.
std::size_t matchLastLetter(std::string_view text, char letter) noexcept {
  if (text.empty()) {
    return 0;
  }
  if (lower(text.back()) == letter) {
    return 1;
  }
  if (letter == 's' && text.ends_with("\xC5\xBF")) {  // U+017F, long s
    return 2;
  }
  return letter == 'k' && text.ends_with("\xE2\x84\xAA") ? 3 : 0;  // U+212A, Kelvin sign
}

// Where the word begins that ends `text`; npos when another text does.
std::size_t matchAtEnd(std::string_view text, std::string_view word) noexcept {
  for (; !word.empty(); word.remove_suffix(1)) {
    const std::size_t length = matchLastLetter(text, lower(word.back()));
    if (length == 0) {
      return std::string_view::npos;
    }
    text.remove_suffix(length);
  }
  return text.size();
}

}  // namespace

TextMatch findAssignment(std::string_view text, std::string_view word, std::size_t from) noexcept {
  const char last = word.empty() ? '\0' : lower(word.back());
  for (std::size_t at = text.find('=', from); at != std::string_view::npos;
       at = text.find('=', at + 1)) {
    // Another letter stands before most "=".
    if (at > from && isAscii(text[at - 1]) && lower(text[at - 1]) != last && !word.empty()) {
      continue;
    }
    const std::size_t begin = matchAtEnd(text.substr(from, at - from), word);
    if (begin != std::string_view::npos) {
      return {from + begin, at + 1};
    }
  }
  return {};
}

}  // namespace tamzo
