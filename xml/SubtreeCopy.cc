#include "xml/SubtreeCopy.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>

#include "xml/StringValue.h"
#include "xml/XmlTree.h"

namespace tamzo {
namespace {

// An attribute begins as every node does; libxml2 takes one for the other everywhere.
const xmlNode* asNode(const xmlAttr* attribute) noexcept {
  return reinterpret_cast<const xmlNode*>(attribute);
}

template <typename Node>
Node* orBadAlloc(Node* node) {
  if (node == nullptr) {
    throw std::bad_alloc();
  }
  return node;
}

// `node` with `content` in it; libxml2 may have made it without, and an instruction without a name.
xmlNode* withContent(xmlNode* node, const xmlChar* content) {
  if (node == nullptr || (content != nullptr && node->content == nullptr) ||
      (node->type == XML_PI_NODE && node->name == nullptr)) {
    xmlFreeNode(node);
    throw std::bad_alloc();
  }
  return node;
}

// The colon is all that keeps a name from being one without a prefix.
std::string withoutColons(std::string name) {
  std::replace(name.begin(), name.end(), ':', '_');
  return name;
}

bool isSameNamespace(const xmlNs* a, const xmlNs* b) noexcept {
  return a == b || (a != nullptr && b != nullptr && xmlStrEqual(a->href, b->href) == 1);
}

bool hasAttribute(const xmlNode* element, const xmlNs* ns, const xmlChar* name) noexcept {
  for (const xmlAttr* each = element->properties; each != nullptr; each = each->next) {
    // Names are of one dictionary.
    if (each->name == name && isSameNamespace(each->ns, ns)) {
      return true;
    }
  }
  return false;
}

}  // namespace

void linkChild(xmlNode* parent, xmlNode* node) noexcept {
  node->parent = parent;
  node->prev = parent->last;
  if (parent->last == nullptr) {
    parent->children = node;
  } else {
    parent->last->next = node;
  }
  parent->last = node;
}

void setValue(xmlAttr* attribute, const xmlChar* value) {
  linkChild(reinterpret_cast<xmlNode*>(attribute),
            withContent(xmlNewDocText(attribute->doc, value), value));
}

xmlNode* SubtreeCopy::appendTag(xmlNode* parent, const xmlNode* source) {
  xmlNode* element = appendNameless(parent);
  name(element, source);
  return element;
}

void SubtreeCopy::append(xmlNode* parent, const xmlNode* source) {
  const xmlChar* content = source->content;
  switch (source->type) {
    case XML_ELEMENT_NODE:
      appendElement(parent, source);
      break;
    case XML_TEXT_NODE:
      appendText(parent, content);
      break;
    case XML_ENTITY_REF_NODE:
      appendText(parent, asXml(entityTextOf(source)));
      break;
    case XML_CDATA_SECTION_NODE:
      linkChild(parent,
                withContent(xmlNewCDataBlock(root_->doc, content, xmlStrlen(content)), content));
      break;
    case XML_COMMENT_NODE:
      linkChild(parent, withContent(xmlNewDocComment(root_->doc, content), content));
      break;
    case XML_PI_NODE:
      linkChild(
          parent,
          withContent(xmlNewDocPI(root_->doc, asXml(withoutColons(asChars(source->name))), content),
                      content));
      break;
    default:
      break;  // nothing else stands in an element
  }
}

void SubtreeCopy::appendChildren(xmlNode* parent, const xmlNode* source, const xmlNode* omitted) {
  for (const xmlNode* child = source->children; child != nullptr; child = child->next) {
    if (child != omitted) {
      append(parent, child);
    }
  }
}

void SubtreeCopy::appendElement(xmlNode* parent, const xmlNode* source) {
  xmlNode* element = appendNameless(parent);
  const std::size_t scope = declarations_.enter(source, element);
  name(element, source);
  appendChildren(element, source, nullptr);
  declarations_.leave(scope);
}

// What is declared on an element decides on its name, so that it comes first.
xmlNode* SubtreeCopy::appendNameless(xmlNode* parent) {
  auto* name = const_cast<xmlChar*>(root_->name);
  xmlNode* element = orBadAlloc(xmlNewDocNodeEatName(root_->doc, nullptr, name, nullptr));
  linkChild(parent, element);
  return element;
}

// The name and attributes of `source`, with what is declared by now.
void SubtreeCopy::name(xmlNode* element, const xmlNode* source) {
  const Name own = nameOf(source);
  element->ns = own.ns;
  element->name = own.text;
  for (const xmlAttr* each = source->properties; each != nullptr; each = each->next) {
    appendAttribute(element, each);
  }
}

// Of two attributes that are one to a reader who knows namespaces the first stays.
void SubtreeCopy::appendAttribute(xmlNode* element, const xmlAttr* source) {
  const Name own = nameOf(asNode(source));
  if (hasAttribute(element, own.ns, own.text)) {
    return;
  }
  xmlAttr* attribute =
      orBadAlloc(xmlNewNsPropEatName(element, own.ns, const_cast<xmlChar*>(own.text), nullptr));
  const xmlNode* value = source->children;
  if (value != nullptr && value->next == nullptr && value->type == XML_TEXT_NODE) {
    setValue(attribute, value->content);
  } else if (value != nullptr) {
    setValue(attribute, asXml(textOf(asNode(source))));
  }
}

void SubtreeCopy::appendText(xmlNode* parent, const xmlChar* text) {
  linkChild(parent, withContent(xmlNewDocText(root_->doc, text), text));
}

const xmlChar* SubtreeCopy::intern(const std::string& text) {
  return orBadAlloc(xmlDictLookup(root_->doc->dict, asXml(text), static_cast<int>(text.size())));
}

SubtreeCopy::Name SubtreeCopy::nameOf(const xmlNode* source) {
  if (source->ns != nullptr) {
    return nameWithNamespace(source);
  }
  if (std::strchr(asChars(source->name), ':') != nullptr) {
    return nameWithoutNamespace(asChars(source->name));
  }
  return {nullptr, orBadAlloc(xmlDictLookup(root_->doc->dict, source->name, -1))};
}

SubtreeCopy::Name SubtreeCopy::nameWithNamespace(const xmlNode* source) {
  const std::string prefix(source->ns->prefix == nullptr ? "" : asChars(source->ns->prefix));
  const std::string local = withoutColons(asChars(source->name));
  if (prefix == "xml") {
    return {nullptr, intern("xml:" + local)};
  }
  xmlNs* ns = declarations_.find(source->ns, source->doc);
  return {ns, intern(ns == nullptr ? prefix + "_" + local : local)};
}

// What libxml2 could not take apart: a prefix that is nowhere declared, or colons in odd places.
SubtreeCopy::Name SubtreeCopy::nameWithoutNamespace(const std::string& qualified) {
  const std::size_t colon = qualified.find(':');
  const std::string local = withoutColons(qualified.substr(colon + 1));
  xmlNs* ns = xmlValidateNCName(asXml(local), 0) == 0
                  ? declarations_.findUndeclared(qualified.substr(0, colon))
                  : nullptr;
  return {ns, intern(ns == nullptr ? withoutColons(qualified) : local)};
}

}  // namespace tamzo
