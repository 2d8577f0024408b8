#pragma once

#include "sdk/TrackerMap.h"
#include "xml/NodeList.h"
#include "xml/Text.h"

namespace tamzo {

// Tracker events as the record holds them: the text of an element as it stands, and an offset that
// is "" for an event that has no time.

inline std::shared_ptr<TamzoTrackerEvent> makeTracker(Text url, Text offset = Text::literal("")) {
  auto event = TamzoTrackerEvent::init();
  event->setUrl(std::move(url));
  event->setOffset(std::move(offset));
  return event;
}

/// Appends an event for the element, unless its text is empty.
inline void appendTracker(std::vector<std::shared_ptr<TamzoTrackerEvent>>& events,
                          const DDXMLElement& element, Text offset = Text::literal("")) {
  Text url = element.stringValue();
  if (url.hasCharacters()) {
    events.push_back(makeTracker(std::move(url), std::move(offset)));
  }
}

/// A new list with an event for each element whose text is not empty.
inline TrackerList trackersOf(const NodeList& elements) {
  auto events = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  for (const DDXMLElement& element : elements) {
    appendTracker(*events, element);
  }
  return events;
}

}  // namespace tamzo
