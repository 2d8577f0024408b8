#include "explain/TrackerElements.h"

namespace tamzo::explain {

TrackerElements::TrackerElements(const SeenHop& hop) {
  if (!hop.isRead()) {
    return;
  }
  const bool isInLine = hop.kind == AdKind::inLine;
  const NodeList ad = NodeList::of(hop.followed);
  for (const DDXMLElement& impression : ad.nodesUnderFirst("Impression")) {
    add(Text::literal("Impression"), impression, true);
  }
  if (hop.major == 4) {
    for (const DDXMLElement& impression : ad.nodesUnderFirst("ViewableImpression")) {
      addAll(Text::literal("Viewable"), impression.nodesForXPath("Viewable"));
      addAll(Text::literal("NotViewable"), impression.nodesForXPath("NotViewable"));
      addAll(Text::literal("ViewUndetermined"), impression.nodesForXPath("ViewUndetermined"));
    }
  }
  if (hop.major == 4 && isInLine) {
    for (const DDXMLElement& one : ad.nodesUnderFirst("AdVerifications/Verification")) {
      addAll(Text::literal("AdVerificationViewable"), one.nodesForXPath("ViewableImpression"));
    }
  }
  addTrackings(hop.linears.nodesUnderFirst("TrackingEvents/Tracking"));
  addAll(Text::literal("ClickTracking"), hop.linears.nodesUnderFirst("VideoClicks/ClickTracking"));
  for (const DDXMLElement& block : vendorBlocksOf(hop)) {
    // A later block replaces what an earlier one gave.
    if (const auto replay = block.firstNodeForXPath("canReplay");
        replay.stringValue().hasCharacters()) {
      elements_["canReplay"] = {replay};
    }
  }
  if (hop.major == 4) {
    addTrackings(ad.nodesUnderFirst("Extensions/Extension/Tamzo/ExtraTrackingEvents/Tracking"));
  }
  if (hop.major == 4 && isInLine) {
    addAll(Text::literal("CustomClickTracker"),
           hop.linears.nodesUnderFirst("VideoClicks/CustomClick"));
  }
}

void TrackerElements::add(const Text& event, const DDXMLElement& element, bool isKeptEmpty) {
  if (event.isNil() || (!isKeptEmpty && !element.stringValue().hasCharacters())) {
    return;
  }
  auto list = elements_.find(event.view());
  if (list == elements_.end()) {
    names_.push_back(event);
    list = elements_.emplace(names_.back().view(), std::vector<DDXMLElement>()).first;
  }
  list->second.push_back(element);
}

void TrackerElements::addAll(const Text& event, const NodeList& elements) {
  for (const DDXMLElement& element : elements) {
    add(event, element);
  }
}

void TrackerElements::addTrackings(const NodeList& trackings) {
  for (const DDXMLElement& tracking : trackings) {
    add(tracking.attributeValue("event"), tracking);
  }
}

DDXMLElement TrackerElements::find(std::string_view event, std::size_t index) const {
  const auto list = elements_.find(event);
  return list == elements_.end() || index >= list->second.size() ? DDXMLElement()
                                                                 : list->second[index];
}

}  // namespace tamzo::explain
