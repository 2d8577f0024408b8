#include "explain/TrackerTally.h"

namespace tamzo::explain {

std::vector<BroughtTrackers> TrackerTally::note(const TrackerMap& trackers, std::int32_t hop) {
  std::vector<BroughtTrackers> brought;
  std::size_t index = 0;
  for (const TrackerMap::Entry& entry : trackers) {
    if (index == events_.size()) {
      events_.push_back({entry.name, nullptr, {}});
    }
    Event& event = events_[index];
    if (event.list != entry.events) {
      event.list = entry.events;
      event.hops.clear();
    }
    const std::size_t from = event.hops.size();
    const std::size_t size = entry.events == nullptr ? 0 : entry.events->size();
    if (size > from) {
      event.hops.resize(size, hop);
      brought.push_back({index, from, size - from});
    }
    ++index;
  }
  return brought;
}

}  // namespace tamzo::explain
