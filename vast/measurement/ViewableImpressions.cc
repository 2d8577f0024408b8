#include "tamzo/vast/TamzoVastAd.h"

#include <utility>

#include "tamzo/sdk/TamzoTrackerEvent.h"

namespace tamzo {

void TamzoVastAd::updateViewableImpressions(const NodeList& nodes) {
  const NodeList impressions = nodes.nodesUnderFirst("ViewableImpression");
  if (impressions.empty()) {
    return;
  }
  const auto viewable = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  const auto notViewable = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  const auto undetermined = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  for (const DDXMLElement& impression : impressions) {
    appendTrackers(viewable, impression.nodesForXPath("Viewable"));
    appendTrackers(notViewable, impression.nodesForXPath("NotViewable"));
    appendTrackers(undetermined, impression.nodesForXPath("ViewUndetermined"));
  }
  trackerMap().set(Text::literal("Viewable"), viewable);
  trackerMap().set(Text::literal("NotViewable"), notViewable);
  trackerMap().set(Text::literal("ViewUndetermined"), undetermined);
}

}  // namespace tamzo
