#include "tamzo/xml/NodeList.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace tamzo {
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
  return size_ == 0 ? DDXMLElement() : element(0).firstNodeForXPath(path);
}

NodeList NodeList::nodesUnderFirst(const XPath& path, XmlError* error) const {
  const DDXMLElement first = size_ == 0 ? DDXMLElement() : element(0);
  return first.nodesForXPath(path, error);
}

void NodeList::append(_xmlNode* node) {
  if (size_ < kInline) {
    inline_[size_] = node;
  } else {
    rest_.push_back(node);
  }
  ++size_;
}

}  // namespace tamzo
