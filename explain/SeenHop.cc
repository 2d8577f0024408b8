#include "explain/SeenHop.h"

#include "base/Numbers.h"

namespace tamzo::explain {
namespace {

DDXMLElement firstWithoutEvent(const NodeList& trackings) {
  for (const DDXMLElement& tracking : trackings) {
    if (!tracking.attributeForName("event")) {
      return tracking;
    }
  }
  return {};
}

void findFollowed(SeenHop& hop) {
  const bool isWrapper = hop.kind == AdKind::wrapper;
  for (const DDXMLElement& ad : hop.ads) {
    if (const auto inside =
            isWrapper ? ad.firstNodeForXPath("Wrapper") : ad.firstNodeForXPath("InLine")) {
      hop.followedAd = ad;
      hop.followed = inside;
      return;
    }
    ++hop.followedIndex;
  }
}

// True when the parser got as far as trackers and extensions: an InLine without a Linear to play
// ends it before.
bool isPastLinear(const SeenHop& hop) {
  return hop.isRead() &&
         (hop.kind == AdKind::wrapper || (!hop.linears.empty() && isUsable(hop.linears.at(0))));
}

}  // namespace

void inspect(SeenHop& hop) {
  if (!hop.parsed) {
    return;
  }
  const DDXMLDocument& document = *hop.parsed;
  hop.rootName = document.rootElement().name();
  const NodeList roots = document.nodesForXPath("/VAST");
  if (roots.empty()) {
    return;
  }
  hop.version = roots.at(0).attributeValue("version");
  const std::int32_t number = integerValue(hop.version);
  hop.major = number >= 2 && number <= 4 ? number : 0;
  hop.ads = document.nodesForXPath("/VAST/Ad");
  hop.kind = !document.nodesForXPath("/VAST/Ad/Wrapper").empty()  ? AdKind::wrapper
             : !document.nodesForXPath("/VAST/Ad/InLine").empty() ? AdKind::inLine
                                                                  : AdKind::none;
  if (hop.kind != AdKind::none) {
    findFollowed(hop);
    hop.linears = hop.followed.nodesForXPath("Creatives/Creative/Linear");
  }
}

bool isUsable(const DDXMLElement& linear) {
  for (const DDXMLElement& file : decidingFilesOf(NodeList::of(linear))) {
    if (mediaUseOf(file) != MediaUse::unusable) {
      return true;
    }
  }
  return false;
}

DDXMLElement findTrackingWithoutEvent(const SeenHop& hop) {
  if (!isPastLinear(hop)) {
    return {};
  }
  if (auto found = firstWithoutEvent(hop.linears.nodesUnderFirst("TrackingEvents/Tracking"))) {
    return found;
  }
  return hop.major != 4 ? DDXMLElement()
                        : firstWithoutEvent(hop.followed.nodesForXPath(
                              "Extensions/Extension/Tamzo/ExtraTrackingEvents/Tracking"));
}

std::vector<DDXMLElement> vendorBlocksOf(const SeenHop& hop) {
  std::vector<DDXMLElement> blocks;
  if (!isPastLinear(hop)) {
    return blocks;
  }
  for (const DDXMLElement& extension : hop.followed.nodesForXPath("Extensions/Extension")) {
    if (auto block = extension.firstNodeForXPath("Tamzo")) {
      blocks.push_back(std::move(block));
    }
  }
  return blocks;
}

}  // namespace tamzo::explain
