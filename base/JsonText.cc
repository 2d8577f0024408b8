#include "base/JsonText.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

#include "base/Numbers.h"
#include "base/Utf8.h"

namespace tamzo {
namespace {

constexpr std::size_t kLongestNumber = 32;

// Eight characters at once. Every bit that these compute stands in the highest of its byte, and no
// carry runs from one byte into the next.
using Word = std::uint64_t;
constexpr Word kOnes = 0x0101010101010101;
constexpr Word kHighest = 0x80 * kOnes;

constexpr Word control(Word word) { return ~((word & ~kHighest) + 0x60 * kOnes) & ~word; }
constexpr Word equal(Word word, std::uint8_t c) {
  const Word difference = word ^ (c * kOnes);
  return ~((difference & ~kHighest) + 0x7F * kOnes) & ~difference;
}

// Whether a byte stands in a string as it is; with `AsciiOnly`, one of ASCII.
template <bool AsciiOnly>
constexpr bool isPlain(std::uint8_t c) {
  return c >= 0x20 && c != '"' && c != '\\' && !(AsciiOnly && c >= 0x80);
}

template <bool AsciiOnly>
constexpr Word special(Word word) {
  return (control(word) | equal(word, '"') | equal(word, '\\') | (AsciiOnly ? word : 0)) & kHighest;
}

int bytesBefore(Word marks) {
  return (std::endian::native == std::endian::little ? std::countr_zero(marks)
                                                     : std::countl_zero(marks)) /
         8;
}

template <bool AsciiOnly>
const char* endOfPlain(const char* at, const char* end) {
  for (; end - at >= 8; at += 8) {
    Word word = 0;
    std::memcpy(&word, at, sizeof(word));
    if (const Word marks = special<AsciiOnly>(word)) {
      return at + bytesBefore(marks);
    }
  }
  while (at != end && isPlain<AsciiOnly>(static_cast<std::uint8_t>(*at))) {
    ++at;
  }
  return at;
}

void appendEscape(std::string& out, char c) {
  constexpr std::string_view kNamed = "\"\\\b\f\n\r\t";
  constexpr std::string_view kNames = "\"\\bfnrt";
  out += '\\';
  if (const std::size_t at = kNamed.find(c); at != std::string_view::npos) {
    out += kNames[at];
    return;
  }
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto value = static_cast<std::uint8_t>(c);
  out += "u00";
  out += kDigits[value >> 4U];
  out += kDigits[value & 0xFU];
}

// Takes what is not ASCII off the front of the text.
void appendCharacters(std::string& out, std::string_view& text) {
  std::size_t good = 0;
  Utf8Sequence next;
  do {
    next = utf8SequenceAt(text, good);
    good += next.isCharacter ? next.bytes : 0;
  } while (next.isCharacter && good < text.size() && static_cast<std::uint8_t>(text[good]) >= 0x80);
  out.append(text, 0, good);
  if (!next.isCharacter) {
    out += "\xEF\xBF\xBD";
    good += next.bytes;
  }
  text.remove_prefix(good);
}

template <typename Integer>
void appendInteger(std::string& out, Integer number) {
  std::array<char, kLongestNumber> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  out.append(text.data(), end);
}

// The digits with a point behind so many of them as the exponent says: no more than these, also
// where a float stands for a whole number that has more.
void appendFixed(std::string& out, std::string_view digits, int exponent) {
  const int point = exponent + 1;
  if (point <= 0) {
    out.append("0.").append(static_cast<std::size_t>(-point), '0').append(digits);
    return;
  }
  const auto whole = static_cast<std::size_t>(point);
  if (digits.size() <= whole) {
    out.append(digits).append(whole - digits.size(), '0');
  } else {
    out.append(digits, 0, whole).append(1, '.').append(digits, whole);
  }
}

// Numbers of a higher or lower exponent are written with it.
constexpr int kLeastFixed = -4;
constexpr int kMostFixed = 15;

// The shortest digits that read as that number again.
template <typename Float>
void appendFinite(std::string& out, Float number, int mostFixed = kMostFixed) {
  if (number < 0) {
    out += '-';
  }
  std::array<char, kLongestNumber> text;
  const char* end = std::to_chars(text.data(), text.data() + text.size(), std::abs(number),
                                  std::chars_format::scientific)
                        .ptr;
  const std::string_view written(text.data(), static_cast<std::size_t>(end - text.data()));
  const std::size_t mark = written.find('e');
  const int exponent = integerValue(written.substr(mark + 1));
  if (exponent < kLeastFixed || exponent > mostFixed) {
    out += written;
    return;
  }
  std::swap(text[0], text[1]);  // the point, where there is one, before the digits
  appendFixed(out, written[0] == '.' ? written.substr(1, mark - 1) : written.substr(1, 1),
              exponent);
}

template <typename Float>
void appendFloat(std::string& out, Float number) {
  if (std::isnan(number)) {
    out += "\"nan\"";
  } else if (std::isinf(number)) {
    out += number > 0 ? "\"inf\"" : "\"-inf\"";
  } else if (number == 0 && std::signbit(number)) {
    out += "-0.0";  // many readers take "-0" for an integer, which has no negative zero
  } else {
    appendFinite(out, number);
  }
}

}  // namespace

std::size_t plainJsonBytes(const char* begin, const char* end) noexcept {
  return static_cast<std::size_t>(endOfPlain<false>(begin, end) - begin);
}

void appendJsonString(std::string& out, std::string_view text) {
  out += '"';
  while (!text.empty()) {
    const char* plain = endOfPlain<true>(text.data(), text.data() + text.size());
    out.append(text.data(), plain);
    text.remove_prefix(static_cast<std::size_t>(plain - text.data()));
    if (text.empty()) {
      break;
    }
    if (static_cast<std::uint8_t>(text.front()) >= 0x80) {
      appendCharacters(out, text);
    } else {
      appendEscape(out, text.front());
      text.remove_prefix(1);
    }
  }
  out += '"';
}

void appendJsonNumber(std::string& out, double number) { appendFloat(out, number); }
void appendJsonNumber(std::string& out, float number) { appendFloat(out, number); }
void appendJsonNumber(std::string& out, std::int64_t number) { appendInteger(out, number); }
void appendJsonNumber(std::string& out, std::uint64_t number) { appendInteger(out, number); }

void appendJsonFraction(std::string& out, double number) {
  std::string text;
  appendFinite(text, std::abs(number), kMostFixed - 1);
  if (text.find_first_of(".e") == std::string::npos) {
    text += ".0";
  }
  out += std::signbit(number) ? "-" : "";
  out += text;
}

}  // namespace tamzo
