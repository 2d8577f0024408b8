#include "sdk/TamzoAdDuration.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "sdk/TextConversions.h"

namespace tamzo {
namespace {

bool isAllDigits(std::string_view text) noexcept {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Whole seconds of a clock time; 0 for a text that is none.
std::int64_t secondsOf(std::string_view text) noexcept {
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

}  // namespace

std::shared_ptr<TamzoAdDuration> TamzoAdDuration::initFromString(Text text) {
  const std::int64_t seconds = secondsOf(text);
  return std::shared_ptr<TamzoAdDuration>(new TamzoAdDuration(std::move(text), seconds));
}

Text trackerOffset(const Text& attribute) {
  return attribute.hasCharacters() ? Text(std::to_string(secondsOf(attribute))) : Text::literal("");
}

}  // namespace tamzo
