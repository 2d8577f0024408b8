#pragma once

#include <libxml/tree.h>

#include <memory>
#include <string_view>

namespace tamzo {

/// The tree of one document, shared by every handle into it.
class XmlTree {
 public:
  explicit XmlTree(xmlDoc* doc) noexcept : doc_(doc) {}

  xmlDoc* doc() const noexcept { return doc_.get(); }
  /// The document as the node that an absolute path starts from.
  xmlNode* documentNode() const noexcept { return reinterpret_cast<xmlNode*>(doc_.get()); }

 private:
  struct Free {
    void operator()(xmlDoc* doc) const noexcept { xmlFreeDoc(doc); }
  };
  std::unique_ptr<xmlDoc, Free> doc_;
};

inline const char* asChars(const xmlChar* text) noexcept {
  return reinterpret_cast<const char*>(text);
}

/// True for an element of that name in no namespace.
inline bool isElementNamed(const xmlNode* node, std::string_view name) noexcept {
  return node->type == XML_ELEMENT_NODE && node->ns == nullptr &&
         std::string_view(asChars(node->name)) == name;
}

}  // namespace tamzo
