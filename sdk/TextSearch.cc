#include "sdk/TextSearch.h"

#include <algorithm>
#include <cstring>

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

// The first letters of the word, compared as one number.
constexpr std::size_t kFront = 4;

std::uint32_t lowerFront(const char* text) noexcept {
  std::uint32_t front = 0;
  std::memcpy(&front, text, kFront);
  return front | 0x20202020U;
}

}  // namespace

AssignmentSearch::AssignmentSearch(std::string_view word) noexcept : word_(word) {
  if (word.size() >= kFront && std::all_of(word.begin(), word.begin() + kFront, isPlainLetter)) {
    front_ = lowerFront(word.data());
    known_ = kFront;
  }
}

// Where the word's first letters stand next, case aside; the text's size when they do not. A few
// places are looked at before whole blocks: where the letters stood once, they often stand again.
std::size_t AssignmentSearch::nextCandidate(std::string_view text,
                                            std::size_t from) const noexcept {
  constexpr std::size_t kFew = 16;
  if (known_ == 0) {
    return from;
  }
  const std::size_t last = text.size() < kFront ? 0 : text.size() - kFront + 1;
  std::size_t stop = from + kFew;
  for (std::size_t at = from; at < last; stop = at + kBlock) {
    for (stop = std::min(stop, last); at < stop; ++at) {
      if (lowerFront(text.data() + at) == front_) {
        return at;
      }
    }
    while (at + kBlock < text.size() &&
           !mayHoldPair(text.data() + at, lower(word_[0]), lower(word_[1]))) {
      at += kBlock;
    }
  }
  return text.size();
}

TextMatch AssignmentSearch::find(std::string_view text, std::size_t from) const noexcept {
  const std::string_view rest = word_.substr(known_);
  for (std::size_t at = nextCandidate(text, from); at < text.size();
       at = nextCandidate(text, at + 1)) {
    const std::size_t end = matchAssignment(text, rest, at + known_);
    if (end != std::string_view::npos) {
      return {at, end};
    }
  }
  return {};
}

}  // namespace tamzo
