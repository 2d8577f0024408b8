#include <algorithm>
#include <cstdint>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

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

// A group, with the hop and the element of its second entry.
struct Duplicate {
  const TrackerTally::Event* event;
  Group group;
  std::int32_t hop;
  DDXMLElement element;
  std::size_t at;
};

std::vector<Duplicate> duplicatesOf(const Chain& chain) {
  std::map<std::int32_t, TrackerElements> elements;
  std::vector<Duplicate> duplicates;
  for (const TrackerTally::Event& event : chain.trackers().events()) {
    for (Group& group : duplicatesOf(event)) {
      const std::size_t second = group.entries[1];
      const std::int32_t hop = event.hops[second];
      const SeenHop& seen = chain.hops()[static_cast<std::size_t>(hop) - 1];
      const TrackerElements& ofHop = elements.try_emplace(hop, seen).first->second;
      duplicates.push_back(
          {&event, std::move(group), hop, ofHop.find(event.name, second - beginOf(event, hop)), 0});
    }
  }
  return duplicates;
}

// They come event by event, but the first of them in the document are those to keep.
void putInDocumentOrder(const Chain& chain, std::vector<Duplicate>& duplicates) {
  for (const SeenHop& hop : chain.hops()) {
    std::vector<DDXMLElement> elements;
    std::vector<std::size_t> owners;
    for (std::size_t i = 0; i < duplicates.size(); ++i) {
      if (duplicates[i].hop == hop.number) {
        elements.push_back(duplicates[i].element);
        owners.push_back(i);
      }
    }
    if (!hop.parsed || elements.empty()) {
      continue;
    }
    const std::vector<std::size_t> found = chain.startTagsOf(hop, elements);
    for (std::size_t i = 0; i < found.size(); ++i) {
      duplicates[owners[i]].at = found[i];
    }
  }
  std::stable_sort(duplicates.begin(), duplicates.end(),
                   [](const Duplicate& a, const Duplicate& b) { return a.at < b.at; });
}

}  // namespace

void findDuplicateTracker(const Chain& chain, Findings& findings) {
  std::vector<Duplicate> duplicates = duplicatesOf(chain);
  if (duplicates.size() > Findings::kMostOfOne) {
    putInDocumentOrder(chain, duplicates);
  }
  for (const Duplicate& duplicate : duplicates) {
    if (!findings.takes(duplicate.hop)) {
      continue;
    }
    std::vector<std::int32_t> hops;
    for (const std::size_t entry : duplicate.group.entries) {
      hops.push_back(duplicate.event->hops[entry]);
    }
    findings.add(duplicate.hop)
        .at(duplicate.element)
        .say("The event " + quoted(duplicate.event->name) + " calls one URL " +
                 std::to_string(hops.size()) + " times: " + quoted(duplicate.group.url) + ".",
             "Whoever owns the URL: call it once, or expect it to count more than once.")
        .with("event", duplicate.event->name)
        .with("url", duplicate.group.url)
        .with("hops", hops);
  }
}

}  // namespace tamzo::explain
