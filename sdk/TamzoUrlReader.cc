#include "sdk/TamzoUrlReader.h"

#include <algorithm>
#include <utility>

#include "sdk/CurlReader.h"
#include "sdk/HookSlot.h"
#include "sdk/PercentEncoding.h"

namespace tamzo {
namespace {

HookSlot<TamzoUrlReader::Reader>& readerSlot() {
  static HookSlot<TamzoUrlReader::Reader> slot;
  return slot;
}

HookSlot<TamzoUrlReader::Limits>& limitsSlot() {
  static HookSlot<TamzoUrlReader::Limits> slot;
  return slot;
}

bool isHexDigit(char c) noexcept {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Where the host and port end: brackets belong there, around an IPv6 address, and nowhere else.
std::size_t endOfAuthority(std::string_view url) noexcept {
  const std::size_t start = url.find("://");
  return start == std::string_view::npos
             ? 0
             : std::min(url.find_first_of("/?#", start + 3), url.size());
}

}  // namespace

void TamzoUrlReader::setReader(Reader reader) { readerSlot().set(std::move(reader)); }

void TamzoUrlReader::setLimits(const Limits& limits) { limitsSlot().set(limits); }

std::optional<std::string> TamzoUrlReader::read(const Text& url) {
  const auto reader = readerSlot().get();
  return *reader ? (*reader)(url) : readWithCurl(url, *limitsSlot().get());
}

Text TamzoUrlReader::urlFromText(std::string_view text) {
  if (text.empty()) {
    return {};
  }
  constexpr std::string_view kAllowed = "-._~:/?@!$&'()*+,;=";
  const std::size_t authorityEnd = endOfAuthority(text);
  bool seenFragment = false;
  std::string url;
  url.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const bool isEscape =
        c == '%' && at + 2 < text.size() && isHexDigit(text[at + 1]) && isHexDigit(text[at + 2]);
    const bool isBracket = (c == '[' || c == ']') && at < authorityEnd;
    const bool isFragment = c == '#' && !std::exchange(seenFragment, seenFragment || c == '#');
    if (isAsciiAlphanumeric(c) || kAllowed.find(c) != std::string_view::npos || isEscape ||
        isBracket || isFragment) {
      url += c;
    } else {
      appendPercentEncoded(url, c);
    }
  }
  return Text(std::move(url));
}

}  // namespace tamzo
