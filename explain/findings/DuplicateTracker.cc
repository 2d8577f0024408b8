#include <algorithm>
#include <map>
#include <unordered_map>

#include "base/WhiteSpace.h"
#include "explain/Rules.h"
#include "explain/TrackerElements.h"
#include "explain/Words.h"

namespace tamzo::explain {
namespace {

// The entries of one URL under one event.
struct Group {
  std::string_view url;
  std::vector<std::size_t> entries;
};

std::vector<Group> duplicatesOf(const TrackerTally::Event& event) {
  std::unordered_map<std::string_view, std::size_t> known;
  std::vector<Group> groups;
  for (std::size_t i = 0; i < event.hops.size(); ++i) {
    const std::string_view url = (*event.list)[i]->url();
    if (trimWhiteSpace(url).empty()) {
      continue;
    }
    const auto [place, isNew] = known.emplace(url, groups.size());
    if (isNew) {
      groups.push_back({url, {}});
    }
    groups[place->second].entries.push_back(i);
  }
  std::erase_if(groups, [](const Group& group) { return group.entries.size() < 2; });
  return groups;
}

// Where the entries of a hop begin in an event's list.
std::size_t beginOf(const TrackerTally::Event& event, std::int32_t hop) {
  return static_cast<std::size_t>(std::lower_bound(event.hops.begin(), event.hops.end(), hop) -
                                  event.hops.begin());
}

}  // namespace

void findDuplicateTracker(const Chain& chain, Findings& findings) {
  std::map<std::int32_t, TrackerElements> elements;
  for (const TrackerTally::Event& event : chain.trackers().events()) {
    for (const Group& group : duplicatesOf(event)) {
      const std::size_t second = group.entries[1];
      const std::int32_t hop = event.hops[second];
      if (!findings.wants(hop)) {
        findings.skip(hop);
        continue;
      }
      std::vector<std::int32_t> hops;
      for (const std::size_t entry : group.entries) {
        hops.push_back(event.hops[entry]);
      }
      const SeenHop& seen = chain.hops()[static_cast<std::size_t>(hop) - 1];
      const auto& ofHop = elements.try_emplace(hop, seen).first->second;
      findings.add(hop)
          .at(ofHop.find(event.name, second - beginOf(event, hop)))
          .say("The event " + quoted(event.name) + " calls one URL " + std::to_string(hops.size()) +
                   " times: " + quoted(group.url) + ".",
               "Whoever owns the URL: call it once, or expect it to count more than once.")
          .with("event", event.name)
          .with("url", group.url)
          .with("hops", hops);
    }
  }
}

}  // namespace tamzo::explain
