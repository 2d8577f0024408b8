#include "tamzo/vast/TamzoVastAd.h"

#include "tamzo/sdk/TamzoLogger.h"

namespace tamzo {

void TamzoVastAd::updateAdID(const NodeList& ads) {
  const Text id = ads.empty() ? Text() : ads.at(0).attributeValue("id");
  if (id.isNil()) {
    TAMZO_LOG("no valid ad-id!");
    return;
  }
  setAdID(id);
}

}  // namespace tamzo
