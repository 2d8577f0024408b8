// How the parser asks a document.

#include "tamzo/vast/TamzoVastAd.h"

#include "tamzo/sdk/TamzoVastAdHelper.h"

namespace tamzo {

Text TamzoVastAd::getSingleValueFromNode(const NodeList& nodes, const XPath& withKeyPath) {
  const DDXMLElement match = nodes.firstMatch(withKeyPath);
  return match ? match.stringValue() : Text::literal("");
}

NodeList TamzoVastAd::getArrayFromNode(const NodeList& nodes, const XPath& withKeyPath) {
  return nodes.nodesUnderFirst(withKeyPath);
}

DDXMLElement TamzoVastAd::getNodeAsStringValue(const DDXMLElement& node,
                                               std::string_view withKeyPath) {
  return TamzoVastAdHelper::getFirstElement(node, withKeyPath);
}

}  // namespace tamzo
