// Number and time texts against versions that are slow and obvious. The input is a text, and after
// a line feed another, which is the duration that a percentage is taken of.

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "base/Numbers.h"
#include "base/Utf8.h"
#include "base/WhiteSpace.h"
#include "fuzz/Fuzzing.h"
#include "tamzo/sdk/TamzoAdDuration.h"
#include "tamzo/vast/TamzoVastAd.h"

using namespace tamzo;
using namespace tamzo::fuzz;

namespace {

// The slow versions are quadratic, and std::regex recurses for every character.
constexpr std::size_t kMaxLength = 4096;
constexpr std::size_t kMaxRegexLength = 400;

// The code points, or nothing when the text is not UTF-8.
std::optional<std::u32string> decode(std::string_view text) {
  std::u32string out;
  for (std::size_t at = 0; at < text.size();) {
    const auto byte = [&](std::size_t i) {
      return at + i < text.size() ? static_cast<std::uint8_t>(text[at + i]) : 0U;
    };
    const auto lead = byte(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC0 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                                             : 4;
    if (length == 0 || lead > 0xF4) {
      return std::nullopt;
    }
    std::uint32_t point = length == 1 ? lead : lead & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
      if ((byte(i) & 0xC0U) != 0x80U) {
        return std::nullopt;
      }
      point = (point << 6U) | (byte(i) & 0x3FU);
    }
    const std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    if (point < least[length] || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF)) {
      return std::nullopt;
    }
    out += static_cast<char32_t>(point);
    at += length;
  }
  return out;
}

bool isNewline(char32_t c) {
  return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

bool isWhiteSpace(char32_t c) {
  constexpr std::u32string_view kOthers = U"\t \u00A0\u1680\u202F\u205F\u3000";
  return isNewline(c) || (c >= 0x2000 && c <= 0x200A) || kOthers.find(c) != kOthers.npos;
}

// What follows leading white space, as ASCII; every other character becomes "?", which no number
// holds.
std::string asciiAfterSpace(const std::u32string& text) {
  auto at = text.begin();
  while (at != text.end() && isWhiteSpace(*at)) {
    ++at;
  }
  std::string out;
  for (; at != text.end(); ++at) {
    out += *at > 0 && *at < 0x80 ? static_cast<char>(*at) : '?';
  }
  return out;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::size_t digitsAt(const std::string& text, std::size_t at) {
  std::size_t end = at;
  while (end < text.size() && isDigit(text[end])) {
    ++end;
  }
  return end - at;
}

bool hasSign(const std::string& text) { return text.starts_with('-') || text.starts_with('+'); }

std::int32_t slowInteger(const std::string& text) {
  const std::size_t start = hasSign(text) ? 1 : 0;
  const std::string number = text.substr(0, start + digitsAt(text, start));
  // Saturates at 64 bits by itself.
  const long long value = std::strtoll(number.c_str(), nullptr, 10);
  return static_cast<std::int32_t>(std::clamp<long long>(value, INT32_MIN, INT32_MAX));
}

bool slowBool(std::string text) {
  if (hasSign(text)) {
    text.erase(0, 1);
  }
  while (text.starts_with('0')) {
    text.erase(0, 1);
  }
  return !text.empty() && std::string("YyTt123456789").find(text[0]) != std::string::npos;
}

// The longest decimal number at the front; "0" when there is none.
std::string numberAtFront(const std::string& text) {
  std::size_t at = hasSign(text) ? 1 : 0;
  const std::size_t whole = digitsAt(text, at);
  at += whole;
  std::size_t fraction = 0;
  if (at < text.size() && text[at] == '.') {
    fraction = digitsAt(text, at + 1);
    at += 1 + fraction;
  }
  if (whole + fraction == 0) {
    return "0";
  }
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    const std::size_t sign =
        at + 1 < text.size() && (text[at + 1] == '-' || text[at + 1] == '+') ? 1 : 0;
    if (const std::size_t exponent = digitsAt(text, at + 1 + sign)) {
      at += 1 + sign + exponent;
    }
  }
  return text.substr(0, at);
}

double slowDouble(const std::string& text) {
  return std::strtod(numberAtFront(text).c_str(), nullptr);
}

std::u32string slowTrim(std::u32string text) {
  while (!text.empty() && isWhiteSpace(text.front())) {
    text.erase(text.begin());
  }
  while (!text.empty() && isWhiteSpace(text.back())) {
    text.pop_back();
  }
  return text;
}

std::int64_t slowDuration(const std::u32string& text) {
  static const std::regex clock("([0-9]+):([0-9]+):([0-9]+)(\\.[0-9]+)?",
                                std::regex::ECMAScript | std::regex::optimize);
  const std::string trimmed = asciiAfterSpace(slowTrim(text));
  std::smatch parts;
  if (!std::regex_match(trimmed, parts, clock)) {
    return 0;
  }
  return std::int64_t{slowInteger(parts[1])} * 3600 + std::int64_t{slowInteger(parts[2])} * 60 +
         slowInteger(parts[3]);
}

double slowSkipOffset(const std::u32string& text, std::int64_t durationInSeconds) {
  if (!text.empty() && text.back() == U'%') {
    const double percentage = slowDouble(asciiAfterSpace(text.substr(0, text.size() - 1)));
    return ((static_cast<double>(durationInSeconds) * percentage) / 100.0) * 1000.0;
  }
  std::vector<std::u32string> parts(1);
  for (const char32_t c : text) {
    if (c == U':') {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  if (parts.size() < 3) {
    return 0.0;
  }
  std::int64_t total = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    total = total * (i == 0 ? 1 : 60) + slowInteger(asciiAfterSpace(parts[i]));
  }
  const auto narrowed = static_cast<std::int32_t>(total);
  return static_cast<std::int32_t>(std::int64_t{narrowed} * 1000);
}

template <typename Bits, typename Float>
bool sameBits(Float a, Float b) {
  return std::bit_cast<Bits>(a) == std::bit_cast<Bits>(b) || (a != a && b != b);
}

void checkNumbers(std::string_view text, const std::u32string& points) {
  const std::string ascii = asciiAfterSpace(points);
  require(integerValue(text) == slowInteger(ascii), "integer reading");
  require(boolValue(text) == slowBool(ascii), "boolean reading");
  require(sameBits<std::uint64_t>(doubleValue(text), slowDouble(ascii)), "double reading");
  require(
      sameBits<std::uint32_t>(floatValue(text), std::strtof(numberAtFront(ascii).c_str(), nullptr)),
      "float reading");
}

void checkTexts(std::string_view text, const std::u32string& points) {
  require(decode(trimWhiteSpace(text)) == slowTrim(points), "trimming");
  std::u32string kept = points;
  kept.erase(std::remove_if(kept.begin(), kept.end(), isNewline), kept.end());
  require(decode(removeNewlines(text)) == kept, "removing newlines");
  std::size_t units = 0;
  for (const char32_t c : points) {
    units += c > 0xFFFF ? 2U : 1U;
  }
  for (const std::size_t count : {std::size_t{0}, std::size_t{4}, units, units + 1}) {
    require(isShorterThan(text, count) == (units < count), "counting UTF-16 units");
  }
}

void checkTimes(std::string_view text, const std::u32string& points, std::string_view durationText,
                const std::u32string& durationPoints) {
  const auto duration = TamzoAdDuration::initFromString(Text(durationText));
  require(duration->durationInSeconds() == slowDuration(durationPoints), "duration");
  requireEqual(duration->text(), durationText, "a duration's text");
  requireEqual(trackerOffset(Text(text)), text.empty() ? "" : std::to_string(slowDuration(points)),
               "tracker offset");

  TamzoVastAd ad;
  ad.updateSkipOffset(Text(text));
  require(sameBits<std::uint64_t>(ad.skipOffsetMillis(), slowSkipOffset(points, 0)),
          "skip offset without a duration");
  ad.setDuration(duration);
  ad.updateSkipOffset(Text(text));
  require(sameBits<std::uint64_t>(ad.skipOffsetMillis(),
                                  slowSkipOffset(points, duration->durationInSeconds())),
          "skip offset");
}

void checkWritten(std::string_view text) {
  TamzoVastAd ad;
  ad.setBid(doubleValue(text));
  ad.setOverlayDimensionRatioNode(floatValue(text));
  const auto record = checkedRecord(ad);
  if (record["bid"].is_number()) {
    require(record["bid"].get<double>() == ad.bid(), "a double does not read back");
  } else {
    require(record["bid"] == (ad.bid() > 0 ? "inf" : "-inf"), "an infinite double");
  }
  if (record["overlayDimensionRatioNode"].is_number()) {
    // Rounded once, from the text: by way of a double it might be rounded twice.
    const std::string written = record["overlayDimensionRatioNode"].dump();
    require(std::strtof(written.c_str(), nullptr) == ad.overlayDimensionRatioNode(),
            "a float does not read back");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view duration = asText(data, std::min(size, kMaxLength));
  const std::string_view text = takeUpTo(duration, '\n');
  const auto points = decode(text);
  const auto durationPoints = decode(duration);
  require(isUtf8(text) == points.has_value(), "isUtf8");
  if (points && durationPoints) {
    checkNumbers(text, *points);
    checkNumbers(duration, *durationPoints);
    checkTexts(text, *points);
    checkTexts(duration, *durationPoints);
    checkWritten(text);
    if (text.size() <= kMaxRegexLength && duration.size() <= kMaxRegexLength) {
      checkTimes(text, *points, duration, *durationPoints);
    }
  } else {
    // Any bytes will do; there is nothing to compare with.
    static_cast<void>(integerValue(text));
    static_cast<void>(boolValue(text));
    static_cast<void>(doubleValue(text));
    static_cast<void>(floatValue(text));
    require(text.find(trimWhiteSpace(text)) != std::string_view::npos, "trimming adds something");
    static_cast<void>(removeNewlines(text));
    static_cast<void>(isShorterThan(text, 4));
    TamzoVastAd ad;
    ad.setDuration(TamzoAdDuration::initFromString(Text(duration)));
    ad.updateSkipOffset(Text(text));
    static_cast<void>(trackerOffset(Text(text)));
  }
  return 0;
}
