#include "tamzo/sdk/TamzoTrackerEvent.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "sdk/ClockTime.h"
#include "sdk/ElementText.h"

namespace tamzo {
namespace {

// As many event names as most ads have.
constexpr std::size_t kUsualNames = 8;

TrackerList makeTrackerList() { return makeList<std::shared_ptr<TamzoTrackerEvent>>(); }

// The entry's own share of a name. A growable text may move its characters, which are looked up.
Text fixedName(const Text& name) {
  if (name.isNil()) {
    throw std::invalid_argument("trackers: an event without a name");
  }
  return name.part(name.view());
}

}  // namespace

// ---- The map ---------------------------------------------------------------------------------

TrackerList TrackerMap::find(std::string_view name) const {
  const auto position = positions_.find(name);
  return position ? entries_[*position].events : nullptr;
}

const TrackerList& TrackerMap::listFor(const Text& name) {
  if (const auto position = name.isNil() ? std::nullopt : positions_.find(name)) {
    TrackerList& events = entries_[*position].events;
    if (events == nullptr) {
      events = makeTrackerList();
    }
    return events;
  }
  set(name, makeTrackerList());
  return entries_.back().events;
}

void TrackerMap::set(const Text& name, TrackerList events) {
  if (const auto position = name.isNil() ? std::nullopt : positions_.find(name)) {
    entries_[*position].events = std::move(events);
    return;
  }
  Entry entry{fixedName(name), std::move(events)};
  // Room first and the index next: when memory runs out, the map is what it was.
  if (entries_.size() == entries_.capacity()) {
    entries_.reserve(std::max(kUsualNames, entries_.size() * 2));
  }
  positions_.set(entry.name.view(), entries_.size());
  entries_.push_back(std::move(entry));
}

// ---- Reading ---------------------------------------------------------------------------------

Text trackerOffset(const Text& attribute) {
  return attribute.hasCharacters() ? Text(std::to_string(clockSeconds(attribute)))
                                   : Text::literal("");
}

std::shared_ptr<TamzoTrackerEvent> makeTracker(Text url, Text offset) {
  return std::make_shared<TamzoTrackerEvent>(std::move(url), std::move(offset));
}

void appendTracker(const TrackerList& events, const DDXMLElement& element, Text offset) {
  Text url = element.stringValue();
  if (url.hasCharacters() && events != nullptr) {
    events->push_back(makeTracker(std::move(url), std::move(offset)));
  }
}

void appendTrackers(const TrackerList& events, const NodeList& elements) {
  for (const DDXMLElement& element : elements) {
    appendTracker(events, element);
  }
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
    if (url.hasCharacters()) {
      events->push_back(
          makeTracker(std::move(url), trackerOffset(tracking.attributeValue("offset"))));
    }
  }
  return trackers;
}

}  // namespace tamzo
