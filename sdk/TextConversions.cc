#include "sdk/TextConversions.h"

#include <fast_float/fast_float.h>

#include <algorithm>
#include <array>
#include <limits>

namespace tamzo {
namespace {

std::uint8_t byteAt(std::string_view text, std::size_t at) noexcept {
  return at < text.size() ? static_cast<std::uint8_t>(text[at]) : std::uint8_t{0};
}

// The first bytes of white-space characters.
constexpr auto kMayStartWhiteSpace = [] {
  std::array<bool, 256> may{};
  for (const unsigned byte :
       {0x09U, 0x0AU, 0x0BU, 0x0CU, 0x0DU, 0x20U, 0xC2U, 0xE1U, 0xE2U, 0xE3U}) {
    may[byte] = true;
  }
  return may;
}();

bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

// Bytes of the newline character that begins at `at`; 0 for any other.
std::size_t newlineAt(std::string_view text, std::size_t at) noexcept {
  const std::uint8_t first = byteAt(text, at);
  if (first >= 0x0A && first <= 0x0D) {
    return 1;
  }
  if (first == 0xC2 && byteAt(text, at + 1) == 0x85) {
    return 2;
  }
  if (first == 0xE2 && byteAt(text, at + 1) == 0x80) {
    const std::uint8_t last = byteAt(text, at + 2);
    return last == 0xA8 || last == 0xA9 ? 3 : 0;
  }
  return 0;
}

std::string_view withoutLeadingWhiteSpace(std::string_view text) noexcept {
  while (const std::size_t length = whiteSpaceAt(text, 0)) {
    text.remove_prefix(length);
  }
  return text;
}

// Takes an optional sign off the front; true for a minus.
bool takeSign(std::string_view& text) noexcept {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  return isNegative;
}

template <typename Float>
Float floatingValue(std::string_view text) noexcept {
  text = withoutLeadingWhiteSpace(text);
  const bool isNegative = takeSign(text);
  const bool startsNumber =
      !text.empty() &&
      (isDigit(text[0]) || (text[0] == '.' && text.size() > 1 && isDigit(text[1])));
  if (!startsNumber) {
    return Float{0};
  }
  Float value{0};
  fast_float::from_chars(text.data(), text.data() + text.size(), value);
  return isNegative ? -value : value;
}

}  // namespace

std::size_t whiteSpaceAt(std::string_view text, std::size_t at) noexcept {
  const std::uint8_t first = byteAt(text, at);
  if (first < 0x80) {
    return first == 0x20 || (first >= 0x09 && first <= 0x0D) ? 1 : 0;
  }
  const std::uint8_t second = byteAt(text, at + 1);
  if (first == 0xC2) {
    return second == 0x85 || second == 0xA0 ? 2 : 0;
  }
  const std::uint8_t third = byteAt(text, at + 2);
  const std::uint32_t bytes = (std::uint32_t{first} << 16U) | (std::uint32_t{second} << 8U) | third;
  const bool isSpace = bytes == 0xE19A80 ||                         // U+1680
                       (bytes >= 0xE28080 && bytes <= 0xE2808A) ||  // U+2000 to U+200A
                       bytes == 0xE280A8 || bytes == 0xE280A9 ||    // U+2028, U+2029
                       bytes == 0xE280AF || bytes == 0xE2819F ||    // U+202F, U+205F
                       bytes == 0xE38080;                           // U+3000
  return isSpace ? 3 : 0;
}

std::size_t findWhiteSpace(std::string_view text, std::size_t from) noexcept {
  std::size_t at = from;
  while (at < text.size() &&
         !(kMayStartWhiteSpace[byteAt(text, at)] && whiteSpaceAt(text, at) > 0)) {
    ++at;
  }
  return at;
}

std::string_view trimWhiteSpace(std::string_view text) noexcept {
  text = withoutLeadingWhiteSpace(text);
  for (bool trimmed = true; trimmed && !text.empty();) {
    trimmed = false;
    for (std::size_t length = 1; length <= std::min<std::size_t>(3, text.size()); ++length) {
      if (whiteSpaceAt(text, text.size() - length) == length) {
        text.remove_suffix(length);
        trimmed = true;
        break;
      }
    }
  }
  return text;
}

std::string removeNewlines(std::string_view text) {
  std::string kept;
  kept.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    if (const std::size_t length = newlineAt(text, at)) {
      at += length;
    } else {
      kept += text[at++];
    }
  }
  return kept;
}

bool isShorterThan(std::string_view text, std::size_t count) noexcept {
  std::size_t units = 0;
  for (std::size_t at = 0; at < text.size() && units < count; ++at) {
    const std::uint8_t byte = byteAt(text, at);
    const bool continues = (byte & 0xC0U) == 0x80U;
    // Four UTF-8 bytes are a surrogate pair.
    units += continues ? 0U : (byte >= 0xF0U ? 2U : 1U);
  }
  return units < count;
}

std::int32_t integerValue(std::string_view text) noexcept {
  text = withoutLeadingWhiteSpace(text);
  const bool isNegative = takeSign(text);
  constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
  const std::int64_t limit = isNegative ? kMax + 1 : kMax;
  std::int64_t value = 0;
  for (std::size_t at = 0; at < text.size() && isDigit(text[at]) && value < limit; ++at) {
    value = std::min(value * 10 + (text[at] - '0'), limit);
  }
  return static_cast<std::int32_t>(isNegative ? -value : value);
}

bool boolValue(std::string_view text) noexcept {
  text = withoutLeadingWhiteSpace(text);
  takeSign(text);
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
  return !text.empty() &&
         (text[0] == 'Y' || text[0] == 'y' || text[0] == 'T' || text[0] == 't' || isDigit(text[0]));
}

double doubleValue(std::string_view text) noexcept { return floatingValue<double>(text); }

float floatValue(std::string_view text) noexcept { return floatingValue<float>(text); }

}  // namespace tamzo
