#include <unordered_set>

#include "base/WhiteSpace.h"
#include "explain/Rules.h"
#include "explain/TrackerElements.h"
#include "explain/Words.h"

namespace tamzo::explain {
namespace {

// The insecure URLs that one document brought.
class InsecureUrls {
 public:
  bool add(const Text& url) {
    const std::string_view trimmed = trimWhiteSpace(url);
    if (!beginsLike(trimmed, "http:")) {
      return false;
    }
    kept_.push_back(url);
    urls_.insert(trimmed);
    return true;
  }
  std::size_t count() const noexcept { return urls_.size(); }

 private:
  std::vector<Text> kept_;
  std::unordered_set<std::string_view> urls_;
};

void addMedia(const Chain& chain, const SeenHop& hop, InsecureUrls& urls, DDXMLElement& first) {
  if (chain.ad().mediaFiles() == nullptr || chain.ad().mediaFiles()->empty() ||
      hop.number != chain.last().number) {
    return;
  }
  for (const DDXMLElement& file : hop.linears.nodesUnderFirst("MediaFiles/MediaFile")) {
    if (urls.add(TamzoMediaFile(file).url()) && !first) {
      first = file;
    }
  }
}

// For each event the first of its trackers that is insecure, as event and place in its list.
std::vector<std::pair<std::size_t, std::size_t>> addTrackers(const Chain& chain, const SeenHop& hop,
                                                             InsecureUrls& urls) {
  std::vector<std::pair<std::size_t, std::size_t>> first;
  for (const BroughtTrackers& brought : hop.brought) {
    const TrackerTally::Event& event = chain.trackers().events()[brought.event];
    bool isFirst = true;
    for (std::size_t i = brought.from; i < brought.from + brought.count; ++i) {
      const bool isStillThere = i < event.hops.size() && event.hops[i] == hop.number;
      if (isStillThere && urls.add((*event.list)[i]->url()) && isFirst) {
        first.emplace_back(brought.event, i - brought.from);
        isFirst = false;
      }
    }
  }
  return first;
}

}  // namespace

void findInsecureUrl(const Chain& chain, Findings& findings) {
  for (const SeenHop& hop : chain.hops()) {
    InsecureUrls urls;
    DDXMLElement tag = hop.kind == AdKind::wrapper && hop.major != 0
                           ? hop.followed.firstNodeForXPath("VASTAdTagURI")
                           : DDXMLElement();
    const bool hasTag = tag && urls.add(tag.stringValue());
    DDXMLElement media;
    addMedia(chain, hop, urls, media);
    const auto trackers = addTrackers(chain, hop, urls);
    if (urls.count() == 0) {
      continue;
    }
    Draft& draft = findings.add(hop.number)
                       .at(hasTag ? tag : DDXMLElement())
                       .at(media)
                       .say(counted(urls.count(), "URL is", "URLs are") +
                                " http: and not https:, which many apps and web views block.",
                            "Whoever owns the URLs: serve them by https.")
                       .with("count", urls.count());
    if (!trackers.empty()) {
      const TrackerElements elements(hop);
      for (const auto& [event, index] : trackers) {
        draft.at(elements.find(chain.trackers().events()[event].name, index));
      }
    }
  }
}

}  // namespace tamzo::explain
