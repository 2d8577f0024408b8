#include "tamzo/vast/TamzoVastAd.h"

#include "tamzo/sdk/TamzoLogger.h"

namespace tamzo {

void TamzoVastAd::updateUniversalAdIdInfo(const NodeList& nodes) {
  const NodeList ids = getArrayFromNode(nodes, "UniversalAdId");
  if (ids.empty()) {
    TAMZO_LOG("Universal AdId not available");
    return;
  }
  const DDXMLElement id = ids.at(0);
  if (const Text registry = id.attributeValue("idRegistry"); !registry.isNil()) {
    setUnivversalIDRegistry(registry);
  }
  if (const Text value = id.attributeValue("idValue"); !value.isNil()) {
    setUniversalIDValue(value);
  }
  TAMZO_LOG("Universal AdId Info idRegistryNode = %@ idValueNode = %@", univversalIDRegistry(),
            universalIDValue());
}

}  // namespace tamzo
