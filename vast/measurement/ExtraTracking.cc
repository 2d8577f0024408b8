// The vendor's own tracking events.

#include "tamzo/vast/TamzoVastAd.h"

#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/sdk/TamzoTrackerEvent.h"

namespace tamzo {

void TamzoVastAd::updateExtraTrackingEvent(const NodeList& nodes) {
  TAMZO_LOG("edc");  // no slip: the SDK's log filters look for this text
  if (nodes.isNil()) {
    return;
  }
  updateExtraTrackingEvent_REC(
      nodes.at(0).nodesForXPath("Extensions/Extension/Tamzo/ExtraTrackingEvents/Tracking"));
}

void TamzoVastAd::updateExtraTrackingEvent_REC(const NodeList& trackingNodes) {
  for (const DDXMLElement& tracking : trackingNodes) {
    const TrackerList& events = trackerMap().listFor(tracking.attributeValue("event"));
    appendTracker(events, tracking);
  }
}

}  // namespace tamzo
