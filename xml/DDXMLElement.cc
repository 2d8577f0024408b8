#include "tamzo/xml/DDXMLElement.h"

#include <libxml/tree.h>

#include <algorithm>
#include <vector>

#include "tamzo/xml/NodeList.h"
#include "xml/StringValue.h"
#include "xml/XPathQuery.h"
#include "xml/XmlSerializer.h"
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

Text DDXMLElement::XMLString() const {
  return node_ == nullptr ? Text() : Text(serializeXml(node_));
}

NodeList DDXMLElement::nodesForXPath(const XPath& path, XmlError* error) const {
  NodeList list = findNodes(path, error);
  // Not before: the path may be a view of the message that the last query left there.
  if (error != nullptr && (!list.isNil() || node_ == nullptr)) {
    error->message.clear();
  }
  return list;
}

NodeList DDXMLElement::findNodes(const XPath& path, XmlError* error) const {
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
