#include "tamzo/xml/NodeList.h"

#include <stdexcept>
#include <utility>

#include "xml/ChildIndex.h"
#include "xml/XPathQuery.h"
#include "xml/XmlTree.h"

namespace tamzo {
namespace {

// A list that is asked this often will be asked again: then an index pays, if there is much to look
// through.
constexpr unsigned kLookupsBeforeIndex = 4;
constexpr int kManyChildren = 4;

bool hasManyChildren(const xmlNode* parent) noexcept {
  int count = 0;
  for (const xmlNode* child = parent->children; child != nullptr && count < kManyChildren;
       child = child->next) {
    ++count;
  }
  return count == kManyChildren;
}

xmlNode* firstChildNamed(const xmlNode* parent, std::string_view name) noexcept {
  xmlNode* child = parent->children;
  while (child != nullptr && !isElementNamed(child, name)) {
    child = child->next;
  }
  return child;
}

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
  if (!path.isSingleName()) {
    return element(0).firstNodeForXPath(path);
  }
  if (++lookups_ == kLookupsBeforeIndex && hasManyChildren(node(0))) {
    index_ = std::make_unique<ChildIndex>(node(0));
  }
  xmlNode* found = index_ == nullptr ? firstChildNamed(node(0), path.steps())
                                     : index_->find(path.steps(), path.firstStepHash());
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
