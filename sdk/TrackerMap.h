#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "sdk/KeyIndex.h"
#include "sdk/List.h"
#include "sdk/TamzoTrackerEvent.h"
#include "xml/DDXMLElement.h"
#include "xml/Export.h"
#include "xml/Text.h"

namespace tamzo {

using TrackerList = List<std::shared_ptr<TamzoTrackerEvent>>;

/// Tracking URLs by event name, in the order in which the names were first met.
class TAMZO_EXPORT TrackerMap {
 public:
  struct Entry {
    Text name;
    TrackerList events;
  };

  /// The list under `name`, or nil.
  TrackerList find(std::string_view name) const;

  /// The list under `name`, made and entered empty when there is none. Throws
  /// std::invalid_argument for a nil name.
  const TrackerList& listFor(const Text& name);

  /// Puts `events` under `name` in place of what stands there. Throws as listFor does.
  void set(const Text& name, TrackerList events);

  std::size_t size() const noexcept { return entries_.size(); }
  std::vector<Entry>::const_iterator begin() const noexcept { return entries_.begin(); }
  std::vector<Entry>::const_iterator end() const noexcept { return entries_.end(); }

 private:
  Entry& entryFor(const Text& name);

  std::vector<Entry> entries_;
  KeyIndex positions_;
};

/// The TrackingEvents/Tracking elements under `parent`, as the SDK's components read them: URLs
/// trimmed, empty ones and elements without an event name left out, offsets in whole seconds.
TAMZO_EXPORT TrackerMap trackersUnder(const DDXMLElement& parent);

}  // namespace tamzo
