#include "base/AssignmentSearch.h"

#include <cstring>

#include "base/Ascii.h"

namespace tamzo {
namespace {

// Bytes of the character at the end of `text` that equals `letter` but for case; 0 when it does
// not.
std::size_t matchLastLetter(std::string_view text, char letter) noexcept {
  if (text.empty()) {
    return 0;
  }
  if (asciiLower(text.back()) == letter) {
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
    const std::size_t length = matchLastLetter(text, asciiLower(word.back()));
    if (length == 0) {
      return std::string_view::npos;
    }
    text.remove_suffix(length);
  }
  return text.size();
}

// The first "=" from there on that the letter, in either case, or what is no ASCII stands before;
// null for none. Another letter stands before most, so that this is nearly all of the search.
const char* findCandidate(const char* at, const char* end, char letter) noexcept {
  const char upper =
      letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - ('a' - 'A')) : letter;
  for (; at < end; ++at) {
    at = static_cast<const char*>(std::memchr(at, '=', static_cast<std::size_t>(end - at)));
    if (at == nullptr || at[-1] == letter || at[-1] == upper || isBeyondAscii(at[-1])) {
      return at;
    }
  }
  return nullptr;
}

}  // namespace

TextMatch findAssignment(std::string_view text, std::string_view word, std::size_t from) noexcept {
  if (word.empty()) {
    const std::size_t at = text.find('=', from);
    return at == std::string_view::npos ? TextMatch{} : TextMatch{at, at + 1};
  }
  if (from >= text.size()) {
    return {};
  }
  const std::string_view searched = text.substr(from);
  const char* const end = searched.data() + searched.size();
  const char* at = searched.data();
  while ((at = findCandidate(at + 1, end, asciiLower(word.back()))) != nullptr) {
    const auto size = static_cast<std::size_t>(at - searched.data());
    const std::size_t begin = matchAtEnd(searched.substr(0, size), word);
    if (begin != std::string_view::npos) {
      return {from + begin, from + size + 1};
    }
  }
  return {};
}

}  // namespace tamzo
