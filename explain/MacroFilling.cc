#include "explain/MacroFilling.h"

#include <algorithm>
#include <unordered_set>

#include "base/Ascii.h"
#include "base/WhiteSpace.h"

namespace tamzo::explain {
namespace {

// What a value is made of: what encodeURIComponent leaves, and commas.
bool isOfValue(char c) noexcept {
  return isAsciiAlphanumeric(c) ||
         std::string_view("-_.!~*'()%,").find(c) != std::string_view::npos;
}

// How long the value at the front of `filled` is, where nothing that ends it follows in the tag.
std::size_t widthOf(std::string_view name, std::string_view filled) noexcept {
  constexpr std::size_t kCacheBuster = 8;
  if (name == "CACHEBUSTING") {
    return std::min(kCacheBuster, filled.size());
  }
  if (name == "SERVERSIDE" || name == "PAGEURL") {
    return std::min(std::size_t{1}, filled.size());
  }
  constexpr std::string_view kZone = "%2B00%3A00";
  constexpr std::size_t kLongestTime = 64;
  if (name == "TIMESTAMP") {
    const std::size_t zone = filled.substr(0, kLongestTime).find(kZone);
    if (zone != std::string_view::npos) {
      return zone + kZone.size();
    }
  }
  if (filled.starts_with("-1") || filled.starts_with("-2")) {
    return 2;
  }
  return static_cast<std::size_t>(std::find_if_not(filled.begin(), filled.end(), isOfValue) -
                                  filled.begin());
}

}  // namespace

BracketedName findBracketedName(std::string_view text, std::size_t from) noexcept {
  for (std::size_t open = text.find('[', from); open != std::string_view::npos;
       open = text.find('[', open + 1)) {
    std::size_t end = open + 1;
    while (end < text.size() && (isAsciiLetter(text[end]) || text[end] == '_' ||
                                 (isAsciiDigit(text[end]) && end > open + 1))) {
      ++end;
    }
    if (end > open + 1 && end < text.size() && text[end] == ']') {
      return {open, text.substr(open + 1, end - open - 1)};
    }
  }
  return {};
}

MacroFilling compareFilling(std::string_view tag, std::string_view filled) {
  tag = trimWhiteSpace(tag);
  filled = trimWhiteSpace(filled);
  MacroFilling result;
  std::unordered_set<std::string_view> known;
  std::size_t at = 0;
  for (BracketedName macro = findBracketedName(tag, 0); macro;) {
    const std::string_view before = tag.substr(at, macro.begin - at);
    if (!filled.starts_with(before)) {
      break;  // filled by rules of the host's own
    }
    filled.remove_prefix(before.size());
    at = macro.end();
    const BracketedName next = findBracketedName(tag, at);
    const std::string_view written = tag.substr(macro.begin, at - macro.begin);
    const bool isNew = known.insert(macro.name).second;
    if (filled.starts_with(written)) {
      filled.remove_prefix(written.size());
      if (isNew) {
        result.unfilled.emplace_back(macro.name);
      }
    } else {
      const std::string_view after = tag.substr(at, (next ? next.begin : tag.size()) - at);
      std::size_t width = widthOf(macro.name, filled);
      if (!next && after.size() <= filled.size()) {
        width = filled.size() - after.size();
      } else if (!after.empty() && !filled.substr(width).starts_with(after)) {
        width = std::min(filled.find(after), filled.size());
      }
      if (isNew) {
        result.filled.emplace_back(macro.name, filled.substr(0, width));
      }
      filled.remove_prefix(width);
    }
    macro = next;
  }
  return result;
}

}  // namespace tamzo::explain
