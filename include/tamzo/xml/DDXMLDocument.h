#pragma once

#include <memory>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"
#include "tamzo/xml/DDXMLElement.h"
#include "tamzo/xml/NodeList.h"

namespace tamzo {

class XmlParser;

/// A parsed document. It shares its tree with every element and text that was read from it, so it
/// may go before they do. One that was moved away has no nodes.
class TAMZO_EXPORT DDXMLDocument {
 public:
  /// Parses `text`, which is Unicode already: an encoding that its XML declaration names changes
  /// nothing. Nothing outside the text is ever loaded. Gives null when the text is no well-formed
  /// XML or is shaped to cost more than its size (see xml/XmlParser.cc for the bounds), and says
  /// why in `error`, which is cleared otherwise. `options` is reserved: std::invalid_argument for
  /// anything but 0. Throws std::bad_alloc when memory runs out.
  static std::shared_ptr<DDXMLDocument> initWithXMLString(const Text& text, unsigned options,
                                                          XmlError* error = nullptr);

  /// As DDXMLElement::nodesForXPath, from the document node.
  NodeList nodesForXPath(const XPath& path, XmlError* error = nullptr) const;

  /// The outermost element, which every parsed document has.
  DDXMLElement rootElement() const;

 private:
  friend class XmlParser;

  explicit DDXMLDocument(std::shared_ptr<const XmlTree> tree) : tree_(std::move(tree)) {}

  std::shared_ptr<const XmlTree> tree_;
};

}  // namespace tamzo
