#pragma once

#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace tamzo {

/// The tree of one document, shared by every handle into it.
class XmlTree {
 public:
  /// Takes `doc`, which has that many nodes, made of that many bytes of text, entities included.
  explicit XmlTree(xmlDoc* doc, std::size_t nodes = 0, std::size_t bytes = 0) noexcept
      : doc_(doc), nodes_(nodes), bytes_(bytes) {}

  std::size_t nodes() const noexcept { return nodes_; }
  std::size_t bytes() const noexcept { return bytes_; }

  /// Numbers the elements once, so that libxml2 can tell which of two comes first without looking
  /// for one from the other. Nothing but the evaluation of an XPath expression looks at the
  /// numbers; several threads may.
  void orderElements() const {
    std::call_once(isOrdered_, [this] { xmlXPathOrderDocElems(doc_.get()); });
  }

  xmlDoc* doc() const noexcept { return doc_.get(); }
  /// The document as the node that an absolute path starts from.
  xmlNode* documentNode() const noexcept { return reinterpret_cast<xmlNode*>(doc_.get()); }

 private:
  struct Free {
    void operator()(xmlDoc* doc) const noexcept { xmlFreeDoc(doc); }
  };
  std::unique_ptr<xmlDoc, Free> doc_;
  std::size_t nodes_;
  std::size_t bytes_;
  mutable std::once_flag isOrdered_;
};

/// An entity that refers to an entity that refers to an entity …: so deep, and no deeper.
inline constexpr int kMaxEntityNesting = 40;

inline const xmlChar* asXml(const std::string& text) noexcept {
  return reinterpret_cast<const xmlChar*>(text.c_str());
}
inline const char* asChars(const xmlChar* text) noexcept {
  return reinterpret_cast<const char*>(text);
}

/// True when the NUL-terminated `text` equals `name`, which holds no NUL. Most comparisons end at
/// the first character, so no call is made before it.
inline bool isText(const xmlChar* text, std::string_view name) noexcept {
  const char* chars = asChars(text);
  if (name.empty() || chars[0] != name[0]) {
    return name.empty() && chars[0] == '\0';
  }
  for (std::size_t i = 1; i < name.size(); ++i) {
    if (chars[i] != name[i]) {
      return false;
    }
  }
  return chars[name.size()] == '\0';
}

/// True for an element of that name in no namespace.
inline bool isElementNamed(const xmlNode* node, std::string_view name) noexcept {
  return node->type == XML_ELEMENT_NODE && node->ns == nullptr && isText(node->name, name);
}

}  // namespace tamzo
