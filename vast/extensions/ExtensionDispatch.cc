// Which extension is read by whom.

#include "tamzo/vast/TamzoVastAd.h"
#include "vast/measurement/MoatLog.h"

namespace tamzo {

void TamzoVastAd::updateExtensions(const NodeList& nodes) {
  MoatLog log;
  for (const DDXMLElement& extension : nodes.at(0).nodesForXPath("Extensions/Extension")) {
    const NodeList vendorNodes = extension.nodesForXPath("Tamzo");
    if (!vendorNodes.empty()) {
      updateTamzoExtensions(vendorNodes);
    }
    const NodeList adVerifications = extension.nodesForXPath("AdVerifications");
    if (!adVerifications.empty()) {
      appendMoatMarkup(adVerifications, log);
    }
  }
  log.catchUp(moatViewImpressionStr());
}

}  // namespace tamzo
