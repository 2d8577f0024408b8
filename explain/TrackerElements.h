#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "explain/SeenHop.h"

namespace tamzo::explain {

/// The elements of a document that the parser made trackers of, by event and in its order.
class TrackerElements {
 public:
  explicit TrackerElements(const SeenHop& hop);

  /// The element of the tracker at `index` among those that the document put under `event`; nil
  /// when there is none.
  DDXMLElement find(std::string_view event, std::size_t index) const;

 private:
  void add(const Text& event, const DDXMLElement& element, bool isKeptEmpty = false);
  void addAll(const Text& event, const NodeList& elements);
  void addTrackings(const NodeList& trackings);

  std::vector<Text> names_;  // keeps the characters of the keys
  std::unordered_map<std::string_view, std::vector<DDXMLElement>> elements_;
};

}  // namespace tamzo::explain
