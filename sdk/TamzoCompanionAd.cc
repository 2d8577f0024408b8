#include "sdk/TamzoCompanionAd.h"

#include "sdk/TrimmedText.h"

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

TamzoCompanion readCompanion(const DDXMLElement& node) {
  TamzoCompanion companion;
  companion.id = node.attributeValue("id");
  companion.width = integerAttribute(node, "width");
  companion.height = integerAttribute(node, "height");
  companion.adSlotId = node.attributeValue("adSlotId");
  companion.apiFramework = node.attributeValue("apiFramework");
  companion.altText = trimmedText(node.firstNodeForXPath("AltText"));
  for (const DDXMLElement& resource : node.nodesForXPath("StaticResource")) {
    companion.staticResources.push_back(
        {resource.attributeValue("creativeType"), trimmedText(resource)});
  }
  companion.iframeResources = trimmedTexts(node.nodesForXPath("IFrameResource"));
  for (const DDXMLElement& resource : node.nodesForXPath("HTMLResource")) {
    companion.htmlResources.push_back(resource.stringValue());
  }
  companion.clickThrough = trimmedText(node.firstNodeForXPath("CompanionClickThrough"));
  companion.clickTracking = trimmedTexts(node.nodesForXPath("CompanionClickTracking"));
  companion.trackers = trackersUnder(node);
  return companion;
}

}  // namespace

std::shared_ptr<TamzoCompanionAd> TamzoCompanionAd::initWithNode(const NodeList& companions) {
  auto ad = std::make_shared<TamzoCompanionAd>();
  ad->companions_.reserve(companions.size());
  for (const DDXMLElement& node : companions) {
    ad->companions_.push_back(readCompanion(node));
  }
  return ad;
}

const TamzoCompanion* TamzoCompanionAd::bestForSlot(std::int32_t width,
                                                    std::int32_t height) const noexcept {
  const TamzoCompanion* best = nullptr;
  std::int64_t bestArea = 0;
  for (const TamzoCompanion& companion : companions_) {
    const std::int32_t itsWidth = companion.width.value_or(0);
    const std::int32_t itsHeight = companion.height.value_or(0);
    const bool fits = itsWidth > 0 && itsHeight > 0 && itsWidth <= width && itsHeight <= height;
    const std::int64_t area = std::int64_t{itsWidth} * itsHeight;
    if (companion.hasResource() && fits && area > bestArea) {
      best = &companion;
      bestArea = area;
    }
  }
  return best;
}

}  // namespace tamzo
