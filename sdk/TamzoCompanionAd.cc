#include "tamzo/sdk/TamzoCompanionAd.h"

#include "sdk/ElementText.h"

namespace tamzo {
namespace {

std::vector<Text> trimmedTexts(const NodeList& nodes) {
  std::vector<Text> texts;
  texts.reserve(nodes.size());
  for (const DDXMLElement& node : nodes) {
    texts.push_back(trimmedText(node));
  }
  return texts;
}

}  // namespace

Text TamzoCompanion::id() const { return node_.attributeValue("id"); }
std::optional<std::int32_t> TamzoCompanion::width() const {
  return integerAttribute(node_, "width");
}
std::optional<std::int32_t> TamzoCompanion::height() const {
  return integerAttribute(node_, "height");
}
Text TamzoCompanion::adSlotId() const { return node_.attributeValue("adSlotId"); }
Text TamzoCompanion::apiFramework() const { return node_.attributeValue("apiFramework"); }
Text TamzoCompanion::altText() const { return trimmedText(node_.firstNodeForXPath("AltText")); }

std::vector<TamzoCompanion::StaticResource> TamzoCompanion::staticResources() const {
  std::vector<StaticResource> resources;
  for (const DDXMLElement& resource : node_.nodesForXPath("StaticResource")) {
    resources.push_back({resource.attributeValue("creativeType"), trimmedText(resource)});
  }
  return resources;
}

std::vector<Text> TamzoCompanion::iframeResources() const {
  return trimmedTexts(node_.nodesForXPath("IFrameResource"));
}

std::vector<Text> TamzoCompanion::htmlResources() const {
  std::vector<Text> resources;
  for (const DDXMLElement& resource : node_.nodesForXPath("HTMLResource")) {
    resources.push_back(resource.stringValue());
  }
  return resources;
}

Text TamzoCompanion::clickThrough() const {
  return trimmedText(node_.firstNodeForXPath("CompanionClickThrough"));
}

std::vector<Text> TamzoCompanion::clickTracking() const {
  return trimmedTexts(node_.nodesForXPath("CompanionClickTracking"));
}

TrackerMap TamzoCompanion::trackers() const { return trackersUnder(node_); }

bool TamzoCompanion::hasResource() const {
  return node_.firstNodeForXPath("StaticResource") || node_.firstNodeForXPath("IFrameResource") ||
         node_.firstNodeForXPath("HTMLResource");
}

std::shared_ptr<TamzoCompanionAd> TamzoCompanionAd::initWithNode(const NodeList& companions) {
  auto ad = std::make_shared<TamzoCompanionAd>();
  ad->companions_.reserve(companions.size());
  for (const DDXMLElement& node : companions) {
    ad->companions_.emplace_back(node);
  }
  return ad;
}

const TamzoCompanion* TamzoCompanionAd::bestForSlot(std::int32_t width, std::int32_t height) const {
  const TamzoCompanion* best = nullptr;
  std::int64_t bestArea = 0;
  for (const TamzoCompanion& companion : companions_) {
    const std::int32_t itsWidth = companion.width().value_or(0);
    const std::int32_t itsHeight = companion.height().value_or(0);
    const bool fits = itsWidth > 0 && itsHeight > 0 && itsWidth <= width && itsHeight <= height;
    const std::int64_t area = std::int64_t{itsWidth} * itsHeight;
    if (fits && area > bestArea && companion.hasResource()) {
      best = &companion;
      bestArea = area;
    }
  }
  return best;
}

}  // namespace tamzo
