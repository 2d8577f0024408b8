#include "tamzo/vast/TamzoVastAd.h"

#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/sdk/TamzoTrackerEvent.h"

namespace tamzo {

void TamzoVastAd::updateImpressions(const NodeList& nodes) {
  const TrackerList& impressions = trackerMap().listFor(Text::literal("Impression"));
  const NodeList elements = nodes.nodesUnderFirst("Impression");
  if (elements.empty()) {
    return;
  }
  for (const DDXMLElement& element : elements) {
    // Unlike everywhere else an empty URL is kept.
    impressions->push_back(makeTracker(element.stringValue()));
  }
  TAMZO_LOG("impressions added!");
}

}  // namespace tamzo
