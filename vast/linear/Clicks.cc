// Where clicks on the video lead, and the custom clicks. Click trackers are read with the tracking
// events.

#include "tamzo/vast/TamzoVastAd.h"

#include <utility>

#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/sdk/TamzoTrackerEvent.h"

namespace tamzo {

void TamzoVastAd::updateLinearClickThrough(const NodeList& linears) {
  if (linears.empty()) {
    return;
  }
  for (const DDXMLElement& click : linears.nodesUnderFirst("VideoClicks/ClickThrough")) {
    const Text url = click.stringValue();
    if (url.hasCharacters()) {
      setClickThrough(url);
    }
  }
  TAMZO_LOG("Click Through updated!");
}

void TamzoVastAd::updateCustomClickTracker(const NodeList& linears) {
  auto events = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  appendTrackers(events, linears.nodesUnderFirst("VideoClicks/CustomClick"));
  if (!events->empty()) {
    trackerMap().set(Text::literal("CustomClickTracker"), std::move(events));
  }
}

}  // namespace tamzo
