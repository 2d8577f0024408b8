// What a Wrapper says of the document behind it.

#include "tamzo/vast/TamzoVastAd.h"

#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/sdk/TamzoMacroReplacementUtil.h"

namespace tamzo {

Text TamzoVastAd::getVastTagURI(const NodeList& wrappers) {
  return getSingleValueFromNode(wrappers, "VASTAdTagURI");
}

NodeList TamzoVastAd::getWrapperLinearNode(const NodeList& nodes) {
  NodeList linears = nodes.nodesUnderFirst("Creatives/Creative/Linear");
  return linears.empty() ? NodeList() : linears;
}

void TamzoVastAd::resolveNextTag(const NodeList& wrappers) {
  setVastTagURI(getVastTagURI(wrappers));
  noteTag();
  setVastTagURI(TamzoMacroReplacementUtil::replaceVASTMacros(vastTagURI(), *this));
  TAMZO_LOG("VastTagURI: %@", vastTagURI());
}

}  // namespace tamzo
