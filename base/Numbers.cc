#include "base/Numbers.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "base/Ascii.h"
#include "base/WhiteSpace.h"

// With tables of its own, so that the standard library reads numbers where it can.
#ifndef __cpp_lib_to_chars
#include <fast_float/fast_float.h>
#endif

namespace tamzo {
namespace {

// Takes an optional sign off the front; true for a minus.
bool takeSign(std::string_view& text) noexcept {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  return isNegative;
}

#ifdef __cpp_lib_to_chars

// What stands for a number that no Float holds. None of those has its first digit that counts near
// the point.
template <typename Float>
Float beyondRange(std::string_view number) noexcept {
  const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
  const std::size_t point = std::min(number.find('.'), mark);
  const std::size_t first = number.find_first_of("123456789");
  const std::int64_t exponent = mark == number.size() ? 0 : integerValue(number.substr(mark + 1));
  const bool isLarge =
      static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) + exponent > 0;
  return isLarge ? std::numeric_limits<Float>::infinity() : Float{0};
}

template <typename Float>
Float numberAtFront(std::string_view text) noexcept {
  Float value{0};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc::result_out_of_range
             ? beyondRange<Float>({text.data(), static_cast<std::size_t>(end - text.data())})
             : value;
}

#else

template <typename Float>
Float numberAtFront(std::string_view text) noexcept {
  Float value{0};
  fast_float::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

#endif

template <typename Float>
Float floatingValue(std::string_view text) noexcept {
  text = withoutLeadingWhiteSpace(text);
  const bool isNegative = takeSign(text);
  const bool startsNumber =
      !text.empty() &&
      (isAsciiDigit(text[0]) || (text[0] == '.' && text.size() > 1 && isAsciiDigit(text[1])));
  if (!startsNumber) {
    return Float{0};
  }
  const auto value = numberAtFront<Float>(text);
  return isNegative ? -value : value;
}

}  // namespace

std::int32_t integerValue(std::string_view text) noexcept {
  text = withoutLeadingWhiteSpace(text);
  const bool isNegative = takeSign(text);
  constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
  const std::int64_t limit = isNegative ? kMax + 1 : kMax;
  std::int64_t value = 0;
  for (std::size_t at = 0; at < text.size() && isAsciiDigit(text[at]) && value < limit; ++at) {
    value = std::min(value * 10 + (text[at] - '0'), limit);
  }
  return static_cast<std::int32_t>(isNegative ? -value : value);
}

bool boolValue(std::string_view text) noexcept {
  text = withoutLeadingWhiteSpace(text);
  takeSign(text);
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
  return !text.empty() && (text[0] == 'Y' || text[0] == 'y' || text[0] == 'T' || text[0] == 't' ||
                           isAsciiDigit(text[0]));
}

double doubleValue(std::string_view text) noexcept { return floatingValue<double>(text); }

float floatValue(std::string_view text) noexcept { return floatingValue<float>(text); }

}  // namespace tamzo
