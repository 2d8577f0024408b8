#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo {

void TamzoVastAd::updateAllCompanionNodes(const NodeList& nodes) {
  const NodeList companions = nodes.nodesUnderFirst("Creatives/Creative/CompanionAds/Companion");
  if (!companions.empty()) {
    updateCompanion(companions);
  }
}

void TamzoVastAd::updateCompanion(const NodeList& companions) {
  if (companionAds() == nullptr) {
    setCompanionAds(makeList<std::shared_ptr<TamzoCompanionAd>>());
  }
  companionAds()->push_back(TamzoCompanionAd::initWithNode(companions));
}

std::shared_ptr<TamzoCompanionAd> TamzoVastAd::getMostSuitableCompanion() const noexcept {
  return companionAds() == nullptr || companionAds()->empty() ? nullptr : companionAds()->front();
}

}  // namespace tamzo
