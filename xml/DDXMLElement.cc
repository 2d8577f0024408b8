#include "tamzo/xml/DDXMLElement.h"

#include <libxml/tree.h>
#include <libxml/xmlIO.h>
#include <libxml/xmlsave.h>

#include <algorithm>
#include <new>

#include "tamzo/xml/NodeList.h"
#include "xml/QuietLibrary.h"
#include "xml/StringValue.h"
#include "xml/XPathQuery.h"
#include "xml/XmlTree.h"

namespace tamzo {
namespace {

bool isNamed(const xmlNs* ns, const xmlChar* localName, std::string_view name) noexcept {
  if (ns == nullptr || ns->prefix == nullptr) {
    return isText(localName, name);
  }
  const std::string_view prefix(asChars(ns->prefix));
  return name.size() > prefix.size() && name.starts_with(prefix) && name[prefix.size()] == ':' &&
         name.substr(prefix.size() + 1) == asChars(localName);
}

xmlAttr* findAttribute(const xmlNode* node, std::string_view name) noexcept {
  if (node == nullptr || node->type != XML_ELEMENT_NODE) {
    return nullptr;
  }
  for (xmlAttr* attribute = node->properties; attribute != nullptr; attribute = attribute->next) {
    if (isNamed(attribute->ns, attribute->name, name)) {
      return attribute;
    }
  }
  return nullptr;
}

xmlNode* firstElementFrom(xmlNode* node) noexcept {
  while (node != nullptr && node->type != XML_ELEMENT_NODE) {
    node = node->next;
  }
  return node;
}

int appendTo(void* out, const char* bytes, int count) noexcept {
  try {
    static_cast<std::string*>(out)->append(bytes, static_cast<std::size_t>(count));
    return count;
  } catch (const std::bad_alloc&) {
    return -1;
  }
}

struct CloseOutput {
  void operator()(xmlOutputBuffer* output) const noexcept { xmlOutputBufferClose(output); }
};

}  // namespace

Text DDXMLElement::name() const {
  if (node_ == nullptr || node_->name == nullptr) {
    return {};
  }
  const bool mayHavePrefix = node_->type == XML_ELEMENT_NODE || node_->type == XML_ATTRIBUTE_NODE;
  if (mayHavePrefix && node_->ns != nullptr && node_->ns->prefix != nullptr) {
    return Text(std::string(asChars(node_->ns->prefix)) + ":" + asChars(node_->name));
  }
  return Text::sharing(asChars(node_->name), tree_);
}

Text DDXMLElement::stringValue() const {
  return node_ == nullptr ? Text() : stringValueOf(node_, tree_);
}

DDXMLElement DDXMLElement::attributeForName(std::string_view name) const {
  xmlAttr* attribute = findAttribute(node_, name);
  // An attribute begins as every node does; libxml2 takes one for the other everywhere.
  return attribute == nullptr ? DDXMLElement()
                              : DDXMLElement(reinterpret_cast<xmlNode*>(attribute), tree_);
}

Text DDXMLElement::attributeValue(std::string_view name) const {
  const xmlAttr* attribute = findAttribute(node_, name);
  return attribute == nullptr ? Text()
                              : stringValueOf(reinterpret_cast<const xmlNode*>(attribute), tree_);
}

namespace {

// What libxml2 writes of an element that is a name and, at most, a text without anything to escape;
// nil for any other. Such elements come in masses, and setting up libxml2's output costs many times
// what they do.
Text serializePlain(const xmlDoc* doc, const xmlNode* node) {
  // A document type may ask for the layout of XHTML.
  const bool isBare = doc->intSubset == nullptr && node->type == XML_ELEMENT_NODE &&
                      node->ns == nullptr && node->nsDef == nullptr && node->properties == nullptr;
  if (!isBare) {
    return {};
  }
  const std::string_view name(asChars(node->name));
  const xmlNode* child = node->children;
  std::string xml("<");
  if (child == nullptr) {
    return Text(std::move(xml.append(name).append("/>")));
  }
  if (child->next != nullptr || child->type != XML_TEXT_NODE || child->content == nullptr) {
    return {};
  }
  const std::string_view text(asChars(child->content));
  if (text.find_first_of("<>&\r") != std::string_view::npos) {
    return {};
  }
  xml.reserve(text.size() + 2 * name.size() + 5);
  xml.append(name).append(">").append(text).append("</").append(name).append(">");
  return Text(std::move(xml));
}

Text serialize(xmlDoc* doc, xmlNode* node) {
  if (Text plain = serializePlain(doc, node); !plain.isNil()) {
    return plain;
  }
  std::string xml;
  const QuietLibrary quiet;
  std::unique_ptr<xmlOutputBuffer, CloseOutput> output(
      xmlOutputBufferCreateIO(appendTo, nullptr, &xml, nullptr));
  if (output == nullptr) {
    throw std::bad_alloc();
  }
  xmlNodeDumpOutput(output.get(), doc, node, 0, 0, "UTF-8");
  xmlOutputBufferFlush(output.get());
  const bool isWhole = output->error == 0;
  output.reset();
  if (!isWhole) {
    throw std::bad_alloc();
  }
  return Text(std::move(xml));
}

struct FreeNode {
  void operator()(xmlNode* node) const noexcept { xmlFreeNode(node); }
};

bool sameText(const xmlChar* a, const xmlChar* b) noexcept {
  return a == nullptr || b == nullptr ? a == b : xmlStrEqual(a, b) == 1;
}

// True when nothing of the first tree is missing in the second. libxml2 leaves parts of a copy out
// when memory runs out, and says nothing. Recursion is as deep as the tree.
bool isWholeCopy(const xmlNode* original, const xmlNode* copy) noexcept {
  for (; original != nullptr && copy != nullptr; original = original->next, copy = copy->next) {
    if (original->type != copy->type || !sameText(original->name, copy->name)) {
      return false;
    }
    if (original->type == XML_ATTRIBUTE_NODE) {
      // An attribute has no content of its own, and its layout ends before that of an element.
      if (!isWholeCopy(original->children, copy->children)) {
        return false;
      }
      continue;
    }
    if (original->type == XML_ENTITY_REF_NODE) {
      continue;  // refers to the declaration, which is not copied
    }
    const bool isElement = original->type == XML_ELEMENT_NODE;
    if (isElement ? (original->ns == nullptr) != (copy->ns == nullptr) ||
                        !isWholeCopy(reinterpret_cast<const xmlNode*>(original->properties),
                                     reinterpret_cast<const xmlNode*>(copy->properties)) ||
                        !isWholeCopy(original->children, copy->children)
                  : !sameText(original->content, copy->content)) {
      return false;
    }
  }
  return original == nullptr && copy == nullptr;
}

// Puts the text of every entity reference among the children of `parent` in its place. Recursion
// is as deep as the tree.
void expandEntities(xmlNode* parent, const std::shared_ptr<const XmlTree>& tree) {
  for (xmlNode* child = parent->children; child != nullptr;) {
    xmlNode* next = child->next;
    if (child->type == XML_ELEMENT_NODE) {
      for (xmlAttr* attribute = child->properties; attribute; attribute = attribute->next) {
        expandEntities(reinterpret_cast<xmlNode*>(attribute), tree);
      }
      expandEntities(child, tree);
    } else if (child->type == XML_ENTITY_REF_NODE) {
      const std::string text(entityTextOf(child));
      xmlNode* replacement =
          xmlNewDocText(tree->doc(), reinterpret_cast<const xmlChar*>(text.c_str()));
      if (replacement == nullptr || replacement->content == nullptr) {
        xmlFreeNode(replacement);
        throw std::bad_alloc();
      }
      xmlReplaceNode(child, replacement);
      xmlFreeNode(child);
    }
    child = next;
  }
}

}  // namespace

Text DDXMLElement::XMLString() const {
  return node_ == nullptr ? Text() : serialize(tree_->doc(), node_);
}

Text DDXMLElement::XMLStringStandingAlone() const {
  if (node_ == nullptr || node_->type != XML_ELEMENT_NODE) {
    return XMLString();
  }
  // A copy brings the declarations of its prefixes with it.
  const QuietLibrary quiet;
  // The copy hangs below a node of its own, so that its own attributes are reached too.
  const std::unique_ptr<xmlNode, FreeNode> holder(
      xmlNewDocNode(tree_->doc(), nullptr, reinterpret_cast<const xmlChar*>("holder"), nullptr));
  xmlNode* copy = xmlDocCopyNode(node_, tree_->doc(), 1);
  const bool isWhole = copy != nullptr && (node_->ns == nullptr) == (copy->ns == nullptr) &&
                       isWholeCopy(reinterpret_cast<const xmlNode*>(node_->properties),
                                   reinterpret_cast<const xmlNode*>(copy->properties)) &&
                       isWholeCopy(node_->children, copy->children);
  if (holder == nullptr || !isWhole) {
    xmlFreeNode(copy);
    throw std::bad_alloc();
  }
  xmlAddChild(holder.get(), copy);
  expandEntities(holder.get(), tree_);
  return serialize(tree_->doc(), copy);
}

NodeList DDXMLElement::nodesForXPath(const XPath& path, XmlError* error) const {
  if (node_ == nullptr) {
    return {};
  }
  if (node_->children == nullptr && path.isBelowContext()) {
    return NodeList::makeEmpty();
  }
  NodeList list(tree_);
  if (path.isChildPath()) {
    auto append = [&list](xmlNode* node) {
      list.append(node);
      return false;
    };
    walkChildPath(path.isAbsolute() ? tree_->documentNode() : node_, path.steps(), append);
    return list;
  }
  std::vector<xmlNode*> found;
  if (!evaluateXPath(*tree_, node_, path, found, error)) {
    return {};
  }
  for (xmlNode* node : found) {
    list.append(node);
  }
  return list;
}

DDXMLElement DDXMLElement::firstNodeForXPath(const XPath& path) const {
  if (node_ == nullptr) {
    return {};
  }
  if (!path.isChildPath()) {
    const NodeList all = nodesForXPath(path);
    return all.empty() ? DDXMLElement() : all.at(0);
  }
  xmlNode* first = nullptr;
  auto keep = [&first](xmlNode* node) {
    first = node;
    return true;
  };
  walkChildPath(path.isAbsolute() ? tree_->documentNode() : node_, path.steps(), keep);
  return first == nullptr ? DDXMLElement() : DDXMLElement(first, tree_);
}

std::vector<DDXMLElement> DDXMLElement::firstChildren(
    std::span<const std::string_view> names) const {
  std::vector<DDXMLElement> found(names.size());
  xmlNode* child = node_ == nullptr ? nullptr : node_->children;
  for (; child != nullptr; child = child->next) {
    if (child->type != XML_ELEMENT_NODE || child->ns != nullptr) {
      continue;
    }
    const std::string_view name(asChars(child->name));
    const auto at = std::lower_bound(names.begin(), names.end(), name);
    if (at == names.end() || *at != name) {
      continue;
    }
    DDXMLElement& first = found[static_cast<std::size_t>(at - names.begin())];
    if (!first) {
      first = DDXMLElement(child, tree_);
    }
  }
  return found;
}

DDXMLElement DDXMLElement::firstChildElement() const {
  if (node_ == nullptr || node_->type != XML_ELEMENT_NODE) {
    return {};
  }
  xmlNode* child = firstElementFrom(node_->children);
  return child == nullptr ? DDXMLElement() : DDXMLElement(child, tree_);
}

DDXMLElement DDXMLElement::nextSiblingElement() const {
  if (node_ == nullptr) {
    return {};
  }
  xmlNode* sibling = firstElementFrom(node_->next);
  return sibling == nullptr ? DDXMLElement() : DDXMLElement(sibling, tree_);
}

bool DDXMLElement::hasAttributes() const noexcept {
  return node_ != nullptr && node_->type == XML_ELEMENT_NODE && node_->properties != nullptr;
}

}  // namespace tamzo
