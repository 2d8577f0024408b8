#include "xml/NodeList.h"

#include <stdexcept>
#include <utility>

#include "xml/ChildIndex.h"
#include "xml/XPathQuery.h"
#include "xml/XmlTree.h"

namespace tamzo {
namespace {

// A list that has been asked this often will be asked again: then an index pays.
constexpr unsigned kLookupsBeforeIndex = 3;

}  // namespace

NodeList::NodeList() noexcept = default;
NodeList::NodeList(std::shared_ptr<const XmlTree> tree) noexcept
    : tree_(std::move(tree)), isNil_(false) {}
NodeList::NodeList(const NodeList& other)
    : tree_(other.tree_),
      inline_(other.inline_),
      rest_(other.rest_),
      size_(other.size_),
      isNil_(other.isNil_) {}
NodeList::NodeList(NodeList&& other) noexcept = default;
NodeList& NodeList::operator=(const NodeList& other) { return *this = NodeList(other); }
NodeList& NodeList::operator=(NodeList&& other) noexcept = default;
NodeList::~NodeList() = default;

NodeList NodeList::makeEmpty() { return NodeList(std::shared_ptr<const XmlTree>()); }

NodeList NodeList::of(const DDXMLElement& element) {
  NodeList list(element.tree_);
  if (element) {
    list.append(element.node_);
  }
  return list;
}

DDXMLElement NodeList::at(std::size_t index) const {
  if (index >= size_) {
    throw std::out_of_range("node list: index " + std::to_string(index) + " of " +
                            std::to_string(size_));
  }
  return element(index);
}

DDXMLElement NodeList::firstMatch(const XPath& path) const {
  if (size_ == 0) {
    return {};
  }
  if (node(0)->children == nullptr && path.isBelowContext()) {
    return {};
  }
  const bool isOneStep = path.isBelowContext() && path.steps().find('/') == std::string_view::npos;
  if (!isOneStep || ++lookups_ <= kLookupsBeforeIndex) {
    return element(0).firstNodeForXPath(path);
  }
  if (index_ == nullptr) {
    index_ = std::make_unique<ChildIndex>(node(0));
  }
  xmlNode* found = index_->find(path.steps(), path.firstStepHash());
  return found == nullptr ? DDXMLElement() : DDXMLElement(found, tree_);
}

NodeList NodeList::nodesUnderFirst(const XPath& path, XmlError* error) const {
  return size_ == 0 ? NodeList() : element(0).nodesForXPath(path, error);
}

void NodeList::append(xmlNode* node) {
  if (size_ < kInline) {
    inline_[size_] = node;
  } else {
    rest_.push_back(node);
  }
  ++size_;
}

}  // namespace tamzo
