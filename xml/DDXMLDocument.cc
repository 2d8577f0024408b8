#include "tamzo/xml/DDXMLDocument.h"

#include <stdexcept>

#include "xml/XmlParser.h"
#include "xml/XmlTree.h"

namespace tamzo {

std::shared_ptr<DDXMLDocument> DDXMLDocument::initWithXMLString(const Text& text, unsigned options,
                                                                XmlError* error) {
  if (options != 0) {
    throw std::invalid_argument("initWithXMLString: options are reserved");
  }
  auto tree = parseXml(text, error);
  // No conditional expression around `new`: clang 14 frees twice when what follows it throws.
  if (tree == nullptr) {
    return nullptr;
  }
  return std::shared_ptr<DDXMLDocument>(new DDXMLDocument(std::move(tree)));
}

NodeList DDXMLDocument::nodesForXPath(const XPath& path, XmlError* error) const {
  const DDXMLElement document =
      tree_ == nullptr ? DDXMLElement() : DDXMLElement(tree_->documentNode(), tree_);
  return document.nodesForXPath(path, error);
}

DDXMLElement DDXMLDocument::rootElement() const {
  if (tree_ == nullptr) {
    return {};
  }
  return {xmlDocGetRootElement(tree_->doc()), tree_};
}

}  // namespace tamzo
