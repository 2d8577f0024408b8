#include "sdk/TrackerMap.h"

#include <stdexcept>
#include <string>

#include "sdk/TamzoAdDuration.h"
#include "sdk/TextConversions.h"
#include "sdk/TrimmedText.h"
#include "xml/NodeList.h"

namespace tamzo {

TrackerList TrackerMap::find(std::string_view name) const {
  const auto position = positions_.find(name);
  return position ? entries_[*position].events : nullptr;
}

const TrackerList& TrackerMap::listFor(const Text& name) {
  TrackerList& events = entryFor(name).events;
  if (events == nullptr) {
    events = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  }
  return events;
}

void TrackerMap::set(const Text& name, TrackerList events) {
  entryFor(name).events = std::move(events);
}

TrackerMap::Entry& TrackerMap::entryFor(const Text& name) {
  if (name.isNil()) {
    throw std::invalid_argument("trackers: an event without a name");
  }
  if (const auto position = positions_.find(name)) {
    return entries_[*position];
  }
  entries_.push_back({name, nullptr});
  positions_.set(entries_.back().name.view(), entries_.size() - 1);
  return entries_.back();
}

TrackerMap trackersUnder(const DDXMLElement& parent) {
  TrackerMap trackers;
  for (const DDXMLElement& tracking : parent.nodesForXPath("TrackingEvents/Tracking")) {
    const Text name = tracking.attributeValue("event");
    if (name.isNil()) {
      continue;
    }
    const TrackerList& events = trackers.listFor(name);
    Text url = trimmedText(tracking);
    if (!url.hasCharacters()) {
      continue;
    }
    auto event = TamzoTrackerEvent::init();
    event->setUrl(std::move(url));
    event->setOffset(trackerOffset(tracking.attributeValue("offset")));
    events->push_back(std::move(event));
  }
  return trackers;
}

}  // namespace tamzo
