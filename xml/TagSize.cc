#include "xml/TagSize.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "xml/Markup.h"

namespace tamzo {
namespace {

constexpr std::size_t kBlock = 4096;
constexpr std::size_t kMaxAttributes = 800;

bool holdsManyEqualsSigns(std::string_view text) noexcept {
  std::size_t count = 0;
  for (std::size_t at = text.find('='); at != std::string_view::npos && count <= kMaxAttributes;
       at = text.find('=', at + 1)) {
    ++count;
  }
  return count > kMaxAttributes;
}

// No "<" may stand inside a tag, so a tag of 8 KB covers a whole block that holds none. What such a
// block belongs to may as well be text, a comment or a CDATA section: this only says that it has as
// many "=" as an oversized tag.
bool mayHoldOversizedTag(std::string_view text) noexcept {
  for (std::size_t block = 0; block + kBlock <= text.size(); block += kBlock) {
    if (std::memchr(text.data() + block, '<', kBlock) != nullptr) {
      continue;
    }
    const std::size_t begin = std::min(text.rfind('<', block), block);
    const std::size_t end = std::min(text.find('<', block), text.size());
    if (holdsManyEqualsSigns(text.substr(begin, end - begin))) {
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

std::size_t pastCdata(std::string_view text, std::size_t at) noexcept {
  constexpr std::string_view kOpen = "<![CDATA[";
  return text.substr(at).starts_with(kOpen) ? pastFirst(text, "]]>", at + kOpen.size()) : at;
}

}  // namespace

bool hasOversizedTag(std::string_view text) noexcept {
  if (!mayHoldOversizedTag(text)) {
    return false;
  }
  for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at)) {
    std::size_t end = std::max(pastRemark(text, at), pastCdata(text, at));
    if (end == at) {
      if (text.substr(at).starts_with("<!")) {
        return false;
      }
      std::size_t attributes = 0;
      end = pastTag(text, at, [&attributes](char c) { attributes += c == '=' ? 1 : 0; });
      if (attributes > kMaxAttributes) {
        return true;
      }
    }
    at = end;
  }
  return false;
}

}  // namespace tamzo
