#include "xml/StartTags.h"

#include <algorithm>
#include <unordered_map>

#include "xml/Markup.h"
#include "xml/XmlTree.h"

namespace tamzo {

/// What of the handles is known in this room alone.
class NodeAccess {
 public:
  static const xmlNode* nodeOf(const DDXMLElement& element) noexcept { return element.node_; }
};

namespace {

constexpr std::string_view kCdata = "<![CDATA[";
constexpr std::string_view kDocumentType = "<!DOCTYPE";

// Past the declarations between "[" and "]", which may hold both.
std::size_t pastSubset(std::string_view text, std::size_t at) noexcept {
  while (at < text.size() && text[at] != ']') {
    const std::size_t remark = pastRemark(text, at);
    if (remark != at) {
      at = remark;
    } else if (text[at] == '<') {
      at = pastTag(text, at, [](char) {});
    } else {
      ++at;
    }
  }
  return std::min(at + 1, text.size());
}

std::size_t pastDocumentType(std::string_view text, std::size_t at) noexcept {
  return pastMarkup(text, at, [text](char c, std::size_t next) {
    return c == '[' ? pastSubset(text, next) : next;
  });
}

// The next node in document order that stands in the text itself: what an entity stands for does
// not.
const xmlNode* nextInText(const xmlNode* node, const xmlNode* root) noexcept {
  if (node->type == XML_ELEMENT_NODE && node->children != nullptr) {
    return node->children;
  }
  while (node != root && node->next == nullptr) {
    node = node->parent;
  }
  return node == root ? nullptr : node->next;
}

const xmlNode* nextElement(const xmlNode* node, const xmlNode* root) noexcept {
  do {
    node = nextInText(node, root);
  } while (node != nullptr && node->type != XML_ELEMENT_NODE);
  return node;
}

std::size_t findStartTag(std::string_view text, std::size_t at) noexcept {
  while (at < text.size()) {
    const MarkupPiece piece = markupPieceAt(text, at);
    if (piece.kind == MarkupPiece::Kind::startTag) {
      return at;
    }
    at = piece.end;
  }
  return std::string_view::npos;
}

}  // namespace

MarkupPiece markupPieceAt(std::string_view text, std::size_t at) noexcept {
  using Kind = MarkupPiece::Kind;
  if (text[at] != '<') {
    return {Kind::text, at, std::min(text.find('<', at), text.size())};
  }
  const std::string_view rest = text.substr(at);
  if (rest.starts_with("<?") || rest.starts_with("<!--")) {
    return {rest[1] == '?' ? Kind::instruction : Kind::comment, at, pastRemark(text, at)};
  }
  if (rest.starts_with(kCdata)) {
    return {Kind::cdata, at, pastFirst(text, "]]>", at + kCdata.size())};
  }
  if (rest.starts_with(kDocumentType)) {
    return {Kind::documentType, at, pastDocumentType(text, at)};
  }
  const Kind kind = rest.starts_with("</") ? Kind::endTag : Kind::startTag;
  return {kind, at, pastTag(text, at, [](char) {})};
}

std::vector<std::size_t> findStartTags(std::string_view text, const DDXMLDocument& document,
                                       std::span<const DDXMLElement> elements) {
  std::unordered_multimap<const xmlNode*, std::size_t> wanted;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (elements[i]) {
      wanted.emplace(NodeAccess::nodeOf(elements[i]), i);
    }
  }
  std::vector<std::size_t> found(elements.size(), std::string_view::npos);
  std::size_t left = wanted.size();
  const xmlNode* const root = NodeAccess::nodeOf(document.rootElement());
  std::size_t at = left == 0 ? std::string_view::npos : findStartTag(text, 0);
  for (const xmlNode* node = root; node != nullptr && left > 0 && at != std::string_view::npos;
       node = nextElement(node, root)) {
    const auto [first, last] = wanted.equal_range(node);
    for (auto it = first; it != last; ++it) {
      found[it->second] = at;
      --left;
    }
    at = findStartTag(text, markupPieceAt(text, at).end);
  }
  return found;
}

}  // namespace tamzo
