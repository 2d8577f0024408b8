#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tamzo/sdk/TamzoTrackerEvent.h"

namespace tamzo::explain {

/// What one hop put under an event: entries of its list, as it was after the hop.
struct BroughtTrackers {
  std::size_t event = 0;  ///< its place in the record's map
  std::size_t from = 0;
  std::size_t count = 0;
};

/// Watches a record's trackers grow, hop by hop. Lists are appended to, or put in place of another;
/// events keep their places.
class TrackerTally {
 public:
  /// What came since the last call. Takes time linear in what came and in the number of events.
  std::vector<BroughtTrackers> note(const TrackerMap& trackers, std::int32_t hop);

  /// For each event, in the record's order, the hop of each of its entries.
  struct Event {
    Text name;
    TrackerList list;
    std::vector<std::int32_t> hops;
  };
  const std::vector<Event>& events() const noexcept { return events_; }

 private:
  std::vector<Event> events_;
};

}  // namespace tamzo::explain
