#include "xml/TagSize.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace tamzo {
namespace {

constexpr std::size_t kBlock = 4096;
constexpr std::size_t kMaxAttributes = 800;

// False for a comment, a CDATA section, a processing instruction and an end tag.
bool startsTag(std::string_view text, std::size_t lessThan) noexcept {
  const char next = lessThan + 1 < text.size() ? text[lessThan + 1] : '\0';
  return next != '!' && next != '?' && next != '/';
}

// Counts the "=" outside quotes from the "<" at the front to the ">" that ends the tag.
std::size_t attributesOfTag(std::string_view tag) noexcept {
  std::size_t count = 0;
  for (std::size_t at = 1; at < tag.size() && tag[at] != '>'; ++at) {
    if (tag[at] == '=') {
      ++count;
    } else if (tag[at] == '"' || tag[at] == '\'') {
      at = tag.find(tag[at], at + 1);
      if (at == std::string_view::npos) {
        break;
      }
    }
  }
  return count;
}

}  // namespace

// No "<" may stand inside a tag, so a tag of 8 KB covers a whole block that holds none. Only such
// blocks, and what surrounds them up to the next "<", are looked at closely.
bool hasOversizedTag(std::string_view text) noexcept {
  for (std::size_t block = 0; block + kBlock <= text.size(); block += kBlock) {
    if (std::memchr(text.data() + block, '<', kBlock) != nullptr) {
      continue;
    }
    const std::size_t begin = text.rfind('<', block);
    const std::size_t end = std::min(text.find('<', block), text.size());
    if (begin != std::string_view::npos && startsTag(text, begin) &&
        attributesOfTag(text.substr(begin, end - begin)) > kMaxAttributes) {
      return true;
    }
    block = end / kBlock * kBlock;
    if (end == text.size()) {
      break;
    }
    block -= std::min(block, kBlock);
  }
  return false;
}

}  // namespace tamzo
