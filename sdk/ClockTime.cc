#include "sdk/ClockTime.h"

#include <algorithm>
#include <array>

#include "base/Ascii.h"
#include "base/Numbers.h"
#include "base/WhiteSpace.h"

namespace tamzo {
namespace {

bool isAllDigits(std::string_view text) noexcept {
  return !text.empty() && std::all_of(text.begin(), text.end(), isAsciiDigit);
}

}  // namespace

std::int64_t clockSeconds(std::string_view text) noexcept {
  const std::string_view clock = trimWhiteSpace(text);
  const std::size_t first = clock.find(':');
  const std::size_t second = first == std::string_view::npos ? first : clock.find(':', first + 1);
  if (second == std::string_view::npos) {
    return 0;
  }
  const std::string_view hours = clock.substr(0, first);
  const std::string_view minutes = clock.substr(first + 1, second - first - 1);
  const std::string_view rest = clock.substr(second + 1);
  const std::size_t point = std::min(rest.find('.'), rest.size());
  const std::string_view seconds = rest.substr(0, point);
  const bool hasGoodFraction = point == rest.size() || isAllDigits(rest.substr(point + 1));
  if (!isAllDigits(hours) || !isAllDigits(minutes) || !isAllDigits(seconds) || !hasGoodFraction) {
    return 0;
  }
  return std::int64_t{integerValue(hours)} * 3600 + std::int64_t{integerValue(minutes)} * 60 +
         integerValue(seconds);
}

double lenientClockMillis(std::string_view text) noexcept {
  std::array<std::int64_t, 3> parts{};
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos && i + 1 < parts.size()) {
      return 0.0;
    }
    parts[i] = integerValue(text.substr(0, colon));
    text.remove_prefix(colon == std::string_view::npos ? text.size() : colon + 1);
  }
  const std::int64_t total = parts[0] * 3600 + parts[1] * 60 + parts[2];
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(total) * 1000U);
}

}  // namespace tamzo
