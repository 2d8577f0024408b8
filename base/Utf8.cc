#include "base/Utf8.h"

#include <utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace tamzo {

namespace {

// Of a character that begins with that byte; 0 where none does.
std::size_t bytesOfCharacter(std::uint8_t lead) noexcept {
  if (lead < 0x80) {
    return 1;
  }
  if (lead < 0xC2 || lead > 0xF4) {
    return 0;
  }
  return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

// Only some second bytes make a character of a lead byte: no long form, surrogate or number above
// U+10FFFF.
bool continues(std::uint8_t lead, std::uint8_t second) noexcept {
  const std::uint8_t lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const std::uint8_t highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  return second >= lowest && second <= highest;
}

// Where the first byte at or after `at` stands that is not ASCII.
std::size_t endOfAscii(std::string_view text, std::size_t at) noexcept {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  for (std::uint64_t word = 0; text.size() - at >= sizeof(word); at += sizeof(word)) {
    std::memcpy(&word, text.data() + at, sizeof(word));
    if ((word & kHighBits) != 0) {
      break;
    }
  }
  while (at < text.size() && static_cast<std::uint8_t>(text[at]) < 0x80) {
    ++at;
  }
  return at;
}

}  // namespace

bool isUtf8(std::string_view bytes) noexcept {
  for (std::size_t at = endOfAscii(bytes, 0); at < bytes.size();) {
    const Utf8Sequence next = utf8SequenceAt(bytes, at);
    if (!next.isCharacter) {
      return false;
    }
    at += next.bytes;
    if (at < bytes.size() && static_cast<std::uint8_t>(bytes[at]) < 0x80) {
      at = endOfAscii(bytes, at);
    }
  }
  return true;
}

Utf8Sequence utf8SequenceAt(std::string_view text, std::size_t at) noexcept {
  const auto byteAt = [text, at](std::size_t i) { return static_cast<std::uint8_t>(text[at + i]); };
  const std::uint8_t lead = byteAt(0);
  const std::size_t whole = bytesOfCharacter(lead);
  const std::size_t there = std::min(whole, text.size() - at);
  std::size_t bytes = 1;
  while (bytes < there && continues(bytes == 1 ? lead : 0, byteAt(bytes))) {
    ++bytes;
  }
  return {bytes, bytes == whole};
}

Character characterAt(std::string_view text, std::size_t at) noexcept {
  const Utf8Sequence sequence = utf8SequenceAt(text, at);
  if (!sequence.isCharacter) {
    return {};
  }
  const char* begin = text.data() + at;
  return {static_cast<char32_t>(utf8::unchecked::next(begin)), sequence.bytes};
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
