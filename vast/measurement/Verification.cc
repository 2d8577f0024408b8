// Verification resources: the viewable impressions of each, and the measurement providers.

#include "tamzo/vast/TamzoVastAd.h"

#include "tamzo/sdk/TamzoTrackerEvent.h"

namespace tamzo {

void TamzoVastAd::updateAdVerification(const NodeList& nodes) {
  const auto viewable = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  for (const DDXMLElement& verification : nodes.nodesUnderFirst("AdVerifications/Verification")) {
    appendTrackers(viewable, verification.nodesForXPath("ViewableImpression"));
  }
  if (!viewable->empty()) {
    trackerMap().set(Text::literal("AdVerificationViewable"), viewable);
  }
}

void TamzoVastAd::updateOMVerificationResources(const NodeList& nodes, float vastVerrsion) {
  constexpr float kFirstWithOwnVerifications = 4.1F;
  const NodeList adVerifications =
      vastVerrsion < kFirstWithOwnVerifications
          ? nodes.nodesUnderFirst("Extensions/Extension/AdVerifications")
          : nodes.nodesUnderFirst("AdVerifications");
  if (measurementProviderList() == nullptr) {
    setMeasurementProviderList(makeList<std::shared_ptr<TamzoMeasurementProviderModel>>());
  }
  for (const DDXMLElement& verification : adVerifications.nodesUnderFirst("Verification")) {
    const auto provider = TamzoMeasurementProviderModel::init();
    measurementProviderList()->push_back(
        provider->createMeasurementProviderFromXML(NodeList::of(verification)));
  }
}

}  // namespace tamzo
