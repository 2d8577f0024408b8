#include "tamzo/vast/TamzoVastAd.h"

#include "base/Numbers.h"
#include "tamzo/sdk/TamzoLogger.h"

namespace tamzo {

void TamzoVastAd::updateExpires(const NodeList& nodes) {
  if (nodes.empty()) {
    return;
  }
  const Text value = getSingleValueFromNode(nodes, "Expires");
  TAMZO_LOG("Vast Ad Expires %@", value);
  if (value.hasCharacters()) {
    setExpires(doubleValue(value));
  }
}

}  // namespace tamzo
