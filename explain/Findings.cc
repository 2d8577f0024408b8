#include "explain/Findings.h"

#include <algorithm>
#include <tuple>

#include "explain/Places.h"

namespace tamzo::explain {
namespace {

template <typename Entries, typename Append>
std::string listOf(const Entries& entries, Append append) {
  std::string json = "[";
  for (const auto& entry : entries) {
    json += json.size() == 1 ? "" : ", ";
    append(json, entry);
  }
  return json += ']';
}

std::tuple<Severity, std::int32_t, std::size_t> rankOf(const Finding& finding) {
  return {finding.severity, finding.hop.value_or(0), finding.place ? finding.place->line : 0};
}

}  // namespace

Draft& Draft::with(std::string_view key, const std::vector<std::string>& texts) {
  return withJson(key, listOf(texts, [](std::string& json, const std::string& text) {
                    appendJsonString(json, text);
                  }));
}

Draft& Draft::with(std::string_view key, const std::vector<std::int32_t>& numbers) {
  return withJson(key, listOf(numbers, [](std::string& json, std::int32_t number) {
                    json += std::to_string(number);
                  }));
}

bool Findings::takes(std::optional<std::int32_t> hop) {
  Count& count = counts_[keyOf(hop)];
  const bool isTaken = count.kept < kMostOfOne;
  count.more += isTaken ? 0 : 1;
  return isTaken;
}

Draft& Findings::add(std::optional<std::int32_t> hop) {
  isFound_ = true;
  Count& count = counts_[keyOf(hop)];
  ++count.kept;
  return drafts_.emplace_back(id_, severity_, hop);
}

void Findings::locateIn(const Chain& chain, const SeenHop& hop) {
  std::vector<DDXMLElement> elements;
  std::vector<std::size_t> owners;  // of each element
  std::vector<std::size_t> offsets(drafts_.size(), std::string_view::npos);
  for (std::size_t i = 0; i < drafts_.size(); ++i) {
    if (drafts_[i].finding_.hop != hop.number) {
      continue;
    }
    offsets[i] = drafts_[i].offset_;
    for (const DDXMLElement& element : drafts_[i].elements_) {
      elements.push_back(element);
      owners.push_back(i);
    }
  }
  if (!elements.empty()) {
    const std::vector<std::size_t> found = chain.startTagsOf(hop, elements);
    for (std::size_t i = 0; i < found.size(); ++i) {
      offsets[owners[i]] = std::min(offsets[owners[i]], found[i]);
    }
  }
  std::vector<std::size_t> known;
  std::vector<std::size_t> drafts;
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    if (offsets[i] != std::string_view::npos) {
      known.push_back(offsets[i]);
      drafts.push_back(i);
    }
  }
  if (!known.empty()) {
    std::vector<Place> places = placesOf(hop.document, known);
    for (std::size_t i = 0; i < places.size(); ++i) {
      drafts_[drafts[i]].finding_.place = std::move(places[i]);
    }
  }
}

// The last of a kind is known once they are in their order.
void Findings::addCounts(std::vector<Finding>& findings) const {
  std::map<Key, std::size_t> left;
  for (const auto& [key, count] : counts_) {
    if (count.more > 0) {
      left.emplace(key, count.more);
    }
  }
  for (auto finding = findings.rbegin(); finding != findings.rend() && !left.empty(); ++finding) {
    const auto more = left.find(Key(finding->id, finding->hop.value_or(0)));
    if (more != left.end()) {
      finding->details.push_back({"more", std::to_string(more->second)});
      left.erase(more);
    }
  }
}

std::vector<Finding> Findings::take(const Chain& chain) {
  for (const SeenHop& hop : chain.hops()) {
    locateIn(chain, hop);
  }
  std::vector<Finding> findings;
  findings.reserve(drafts_.size());
  for (Draft& draft : drafts_) {
    findings.push_back(std::move(draft.finding_));
  }
  std::stable_sort(findings.begin(), findings.end(),
                   [](const Finding& a, const Finding& b) { return rankOf(a) < rankOf(b); });
  addCounts(findings);
  return findings;
}

}  // namespace tamzo::explain
