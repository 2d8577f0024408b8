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
  XmlParser parser;
  auto document = parser.parseDocument(text);
  if (error != nullptr) {
    *error = parser.error();
  }
  return document;
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
