#include "explain/SeenHop.h"

#include "base/Numbers.h"

namespace tamzo::explain {
namespace {

NodeList filesOf(const NodeList& linears) {
  NodeList files = linears.nodesUnderFirst("MediaFiles/MediaFile");
  return files.empty() ? linears.nodesUnderFirst("MediaFiles/InteractiveCreativeFile") : files;
}

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

MediaUse mediaUseOf(const DDXMLElement& file) {
  const Text type = file.attributeValue("type");
  if (type.view() == "video/mp4" || type.view() == "video/x-mp4") {
    return MediaUse::video;
  }
  const bool isVpaid = type.view() == "application/javascript" &&
                       file.attributeValue("apiFramework").view() == "VPAID";
  return isVpaid ? MediaUse::javaScriptVpaid : MediaUse::unusable;
}

bool isUsable(const DDXMLElement& linear) {
  for (const DDXMLElement& file : filesOf(NodeList::of(linear))) {
    if (mediaUseOf(file) != MediaUse::unusable) {
      return true;
    }
  }
  return false;
}

DDXMLElement findTrackingWithoutEvent(const SeenHop& hop) {
  if (!hop.isRead()) {
    return {};
  }
  if (hop.kind == AdKind::wrapper || (!hop.linears.empty() && isUsable(hop.linears.at(0)))) {
    if (auto found = firstWithoutEvent(hop.linears.nodesUnderFirst("TrackingEvents/Tracking"))) {
      return found;
    }
    if (hop.major == 4) {
      return firstWithoutEvent(
          hop.followed.nodesForXPath("Extensions/Extension/Tamzo/ExtraTrackingEvents/Tracking"));
    }
  }
  return {};
}

std::vector<DDXMLElement> vendorBlocksOf(const SeenHop& hop) {
  std::vector<DDXMLElement> blocks;
  const bool isReached = hop.isRead() && (hop.kind == AdKind::wrapper ||
                                          (!hop.linears.empty() && isUsable(hop.linears.at(0))));
  if (isReached) {
    for (const DDXMLElement& extension : hop.followed.nodesForXPath("Extensions/Extension")) {
      if (auto block = extension.firstNodeForXPath("Tamzo")) {
        blocks.push_back(std::move(block));
      }
    }
  }
  return blocks;
}

}  // namespace tamzo::explain
