#include "xml/StringValue.h"

#include <string>

namespace tamzo {
namespace {

bool isCharacterData(const xmlNode* node) noexcept {
  return node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE;
}

Text shareContent(const xmlNode* node, const std::shared_ptr<const XmlTree>& tree) {
  return node->content == nullptr ? Text::literal("") : Text::sharing(asChars(node->content), tree);
}

void appendDescendants(std::string& out, const xmlNode* root, int entityNesting);

void appendEntity(std::string& out, const xmlNode* reference, int nesting) {
  // The child of a reference is the entity's declaration, if there is one. It is laid out as a node
  // is, with its parsed text as children.
  if (reference->children != nullptr && nesting < kMaxEntityNesting) {
    appendDescendants(out, reference->children, nesting + 1);
  }
}

// The node after `node` in document order below `root`, or null.
const xmlNode* nextBelow(const xmlNode* root, const xmlNode* node) noexcept {
  if (node->type == XML_ELEMENT_NODE && node->children != nullptr) {
    return node->children;
  }
  while (node->next == nullptr) {
    node = node->parent;
    if (node == nullptr || node == root) {
      return nullptr;
    }
  }
  return node->next;
}

void appendDescendants(std::string& out, const xmlNode* root, int entityNesting) {
  for (const xmlNode* node = root->children; node != nullptr; node = nextBelow(root, node)) {
    if (isCharacterData(node)) {
      if (node->content != nullptr) {
        out += asChars(node->content);
      }
    } else if (node->type == XML_ENTITY_REF_NODE) {
      appendEntity(out, node, entityNesting);
    }
  }
}

}  // namespace

std::string entityTextOf(const xmlNode* reference) {
  std::string text;
  appendEntity(text, reference, 0);
  return text;
}

std::string textOf(const xmlNode* node) {
  std::string all;
  appendDescendants(all, node, 0);
  return all;
}

Text stringValueOf(const xmlNode* node, const std::shared_ptr<const XmlTree>& tree) {
  switch (node->type) {
    case XML_TEXT_NODE:
    case XML_CDATA_SECTION_NODE:
    case XML_COMMENT_NODE:
    case XML_PI_NODE:
      return shareContent(node, tree);
    case XML_ELEMENT_NODE:
    case XML_ATTRIBUTE_NODE:
    case XML_DOCUMENT_NODE:
      break;
    default:
      return Text::literal("");
  }
  const xmlNode* child = node->children;
  if (child == nullptr) {
    return Text::literal("");
  }
  if (child->next == nullptr && isCharacterData(child)) {
    return shareContent(child, tree);
  }
  return Text(textOf(node));
}

}  // namespace tamzo
