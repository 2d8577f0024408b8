// The tracking events and click trackers of a Linear.

#include "tamzo/vast/TamzoVastAd.h"

#include "tamzo/sdk/TamzoTrackerEvent.h"

namespace tamzo {

void TamzoVastAd::updateTrackers(const NodeList& linears) {
  if (linears.empty()) {
    return;
  }
  // `trackersOffset` is of no consequence here: an offset that it lists is tracked all the same.
  for (const DDXMLElement& tracking : linears.nodesUnderFirst("TrackingEvents/Tracking")) {
    // The list is made before the URL is looked at, so an event without a URL has an empty one.
    const TrackerList& events = trackerMap().listFor(tracking.attributeValue("event"));
    appendTracker(events, tracking, trackerOffset(tracking.attributeValue("offset")));
  }
  const TrackerList& clicks = trackerMap().listFor(Text::literal("ClickTracking"));
  appendTrackers(clicks, linears.nodesUnderFirst("VideoClicks/ClickTracking"));
}

// A host may have taken the map away between two calls; the updaters write all the same.
TrackerMap& TamzoVastAd::trackerMap() {
  if (trackers() == nullptr) {
    setTrackers(std::make_shared<TrackerMap>());
  }
  return *trackers();
}

}  // namespace tamzo
