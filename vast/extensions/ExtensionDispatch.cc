// Which extension is read by whom.

#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo {

void TamzoVastAd::updateExtensions(const NodeList& nodes) {
  for (const DDXMLElement& extension : nodes.at(0).nodesForXPath("Extensions/Extension")) {
    const NodeList vendorNodes = extension.nodesForXPath("Tamzo");
    if (!vendorNodes.empty()) {
      updateTamzoExtensions(vendorNodes);
    }
    const NodeList adVerifications = extension.nodesForXPath("AdVerifications");
    if (!adVerifications.empty()) {
      updateMoatAdVerification(adVerifications);
    }
  }
}

}  // namespace tamzo
