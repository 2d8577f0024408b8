#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"
#include "tamzo/xml/XPath.h"

// libxml2's node, named here so that no libxml2 header shows above this layer.
struct _xmlNode;

namespace tamzo {

class DocumentBuilder;
class NodeAccess;
class NodeList;
class XmlTree;

/// What went wrong in a query or a parse. Each clears it, so that it is empty when nothing did.
struct XmlError {
  std::string message;  ///< for people; with the line where there is one
};

/// A node of a parsed document: an element or, where a query asks for one, an attribute, a text, a
/// comment. A small handle that may be nil, and that keeps the whole document alive. Every read on
/// nil is safe and gives nil. A node that was moved away is nil.
///
/// What gives texts or lists throws std::bad_alloc when memory runs out, and nothing else throws.
///
/// Reading the nodes of one document from several threads is safe, queries included.
class TAMZO_EXPORT DDXMLElement {
 public:
  /// Nil.
  DDXMLElement() noexcept = default;

  /// The same node.
  DDXMLElement(const DDXMLElement&) noexcept = default;
  /// The same node.
  DDXMLElement& operator=(const DDXMLElement&) noexcept = default;
  /// Leaves `other` nil.
  DDXMLElement(DDXMLElement&& other) noexcept
      : node_(std::exchange(other.node_, nullptr)), tree_(std::move(other.tree_)) {}
  /// Leaves `other` nil, unless it is this one.
  DDXMLElement& operator=(DDXMLElement&& other) noexcept {
    DDXMLElement taken(std::move(other));
    node_ = taken.node_;
    tree_.swap(taken.tree_);
    return *this;
  }

  /// False for nil.
  explicit operator bool() const noexcept { return node_ != nullptr; }

  /// The name as written, prefix included; nil for a nil node.
  Text name() const;

  /// The text of the node and of all its descendants, untrimmed: character data, CDATA sections
  /// and entities, decoded; comments and processing instructions are no part of it. Never nil for
  /// a node: an empty element gives "". The text shares the document where it can.
  Text stringValue() const;

  /// The attribute of that name, or nil. A name without a prefix finds attributes without one.
  DDXMLElement attributeForName(std::string_view name) const;

  /// `attributeForName(name).stringValue()`: nil when there is no such attribute.
  Text attributeValue(std::string_view name) const;

  /// The node written back as XML, as libxml2 does it; nil for a nil node. Entity references are
  /// written as references.
  Text XMLString() const;

  /// The nodes that an XPath 1.0 expression finds from this node, in document order: an empty list
  /// when it finds none, a nil list when the expression is malformed or gives no nodes (a number,
  /// say) or would take too many steps; `error` then says why, and is cleared otherwise. A path of
  /// plain names finds elements in no namespace, and takes any number of steps. Others take 50
  /// million, fewer on a document with more than some thousand nodes where libxml2 would take long
  /// for each: with axes other than child, attribute and self, with "..", a union, "//" within a
  /// path or a predicate, a test like "text()", or a comparison or search of which no side is a
  /// literal.
  NodeList nodesForXPath(const XPath& path, XmlError* error = nullptr) const;

  /// The first node that `nodesForXPath` would find, or nil.
  DDXMLElement firstNodeForXPath(const XPath& path) const;

  /// The first child element of each name, in no namespace, at the place of its name; nil where
  /// there is none. `names` must be in ascending order; of equal ones only the first is looked for.
  /// Takes one pass over the children, however many names there are.
  std::vector<DDXMLElement> firstChildren(std::span<const std::string_view> names) const;

  /// The first child that is an element; nil when there is none.
  DDXMLElement firstChildElement() const;
  /// The next element beside this one; nil at the end.
  DDXMLElement nextSiblingElement() const;

  /// False for nil, and for what is no element.
  bool hasAttributes() const noexcept;

  /// The same node of the same document.
  friend bool operator==(const DDXMLElement& a, const DDXMLElement& b) noexcept {
    return a.node_ == b.node_;
  }

 private:
  friend class NodeList;
  friend class DDXMLDocument;
  friend class DocumentBuilder;
  friend class NodeAccess;

  DDXMLElement(_xmlNode* node, std::shared_ptr<const XmlTree> tree) noexcept
      : node_(node), tree_(std::move(tree)) {}
  TAMZO_HIDDEN NodeList findNodes(const XPath& path, XmlError* error) const;

  _xmlNode* node_ = nullptr;
  std::shared_ptr<const XmlTree> tree_;
};

}  // namespace tamzo
