#include "explain/TagText.h"

#include <utf8.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <utility>

#include "base/Ascii.h"
#include "xml/Markup.h"
#include "xml/StartTags.h"

namespace tamzo::explain {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::size_t findOr(std::size_t found, std::string_view text) noexcept {
  return std::min(found, text.size());
}

constexpr std::uint32_t kNoCharacter = 0xFFFFFFFFU;

std::uint32_t digitValue(char c) noexcept {
  if (isAsciiDigit(c)) {
    return static_cast<std::uint32_t>(c - '0');
  }
  const auto lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? static_cast<std::uint32_t>(lower - 'a' + 10) : 16U;
}

// What stands between "&" and ";".
std::uint32_t characterOf(std::string_view reference) noexcept {
  constexpr std::array<std::pair<std::string_view, char>, 5> kEntities{
      {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};
  for (const auto& [name, character] : kEntities) {
    if (reference == name) {
      return static_cast<std::uint32_t>(character);
    }
  }
  if (!reference.starts_with('#')) {
    return kNoCharacter;
  }
  const bool isHex = reference.starts_with("#x");
  const std::uint32_t base = isHex ? 16 : 10;
  std::uint32_t value = 0;
  for (const char c : reference.substr(isHex ? 2 : 1)) {
    const std::uint32_t digit = digitValue(c);
    if (digit >= base || value > 0x10FFFFU) {
      return kNoCharacter;
    }
    value = value * base + digit;
  }
  const bool isSurrogate = value >= 0xD800U && value <= 0xDFFFU;
  return value == 0 || isSurrogate || value > 0x10FFFFU ? kNoCharacter : value;
}

}  // namespace

TagText readTag(std::string_view text, std::size_t at) {
  TagText tag;
  std::size_t end = findOr(text.find_first_of(" \t\r\n/>", at + 1), text);
  tag.name = text.substr(at + 1, end - at - 1);
  at = end;
  while (at < text.size() && text[at] != '>') {
    if (isXmlBlank(text[at]) || text[at] == '/') {
      ++at;
      continue;
    }
    AttributeText attribute;
    attribute.nameAt = at;
    end = findOr(text.find_first_of(" \t\r\n=>", at + 1), text);
    attribute.name = text.substr(at, end - at);
    std::size_t equals = findOr(text.find_first_not_of(kBlanks, end), text);
    at = attribute.end = end;
    if (equals < text.size() && text[equals] == '=') {
      const std::size_t open = findOr(text.find_first_not_of(kBlanks, equals + 1), text);
      const bool isQuoted = open < text.size() && (text[open] == '"' || text[open] == '\'');
      const std::size_t close = isQuoted ? text.find(text[open], open + 1) : std::string_view::npos;
      if (close == std::string_view::npos) {
        at = std::max(open, at + 1);
        continue;
      }
      attribute.value = text.substr(open + 1, close - open - 1);
      at = attribute.end = close + 1;
      tag.attributes.push_back(attribute);
    }
  }
  tag.end = std::min(at + 1, text.size());
  return tag;
}

std::size_t findRoot(std::string_view text) noexcept { return findStartTag(text, 0); }

const AttributeText* findAttribute(const TagText& tag, std::string_view name) noexcept {
  const auto found = std::find_if(tag.attributes.begin(), tag.attributes.end(),
                                  [name](const AttributeText& a) { return a.name == name; });
  return found == tag.attributes.end() ? nullptr : &*found;
}

std::string decoded(std::string_view written) {
  std::string text;
  text.reserve(written.size());
  while (!written.empty()) {
    const std::size_t ampersand = findOr(written.find('&'), written);
    text += written.substr(0, ampersand);
    written.remove_prefix(ampersand);
    constexpr std::size_t kLongestReference = 12;
    const std::size_t semicolon = written.substr(0, kLongestReference).find(';');
    const std::uint32_t character = semicolon == std::string_view::npos
                                        ? kNoCharacter
                                        : characterOf(written.substr(1, semicolon - 1));
    if (character != kNoCharacter) {
      utf8::unchecked::append(character, std::back_inserter(text));
      written.remove_prefix(semicolon + 1);
    } else if (!written.empty()) {
      text += '&';
      written.remove_prefix(1);
    }
  }
  return text;
}

}  // namespace tamzo::explain
