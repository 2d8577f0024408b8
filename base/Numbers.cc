#include "base/Numbers.h"

#include <fast_float/fast_float.h>

#include <algorithm>
#include <limits>

#include "base/Ascii.h"
#include "base/WhiteSpace.h"

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
  Float value{0};
  fast_float::from_chars(text.data(), text.data() + text.size(), value);
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
