// The ad server's own settings.

#include "tamzo/vast/TamzoVastAd.h"

#include <utility>

#include "base/Numbers.h"
#include "tamzo/sdk/TamzoLogger.h"

namespace tamzo {

// The vendor block. A setting whose element is absent reads as "", 0 or NO, so that a later block
// overwrites an earlier one whole; only what has an `if` keeps its value. Element names are matched
// as they stand here, whatever their case looks like.
void TamzoVastAd::updateTamzoExtensions(const NodeList& vendorNodes) {
  if (vendorNodes.empty()) {
    return;
  }
  const auto text = [&vendorNodes](const XPath& name) {
    return getSingleValueFromNode(vendorNodes, name);
  };
  setViewabilityAction(integerValue(text("ViewabilityAction")));
  setWebViewBaseUrl(text("WebViewBaseUrl"));
  setAnalytics(text("Analytics"));
  setAnalyticsKey(text("AnalyticsKey"));
  setAnalyticsData(text("AnalyticsData"));
  setNielsenKey(text("NielsenKey"));
  setNielsenUrl(text("NielsenUrl"));
  setNielsenCI(text("NielsenCI"));
  setNielsenCA(text("NielsenCA"));
  setNielsenPlacementId(text("NielsenPlacementId"));
  setNielsenCreativeId(text("NielsenCreativeId"));
  if (const Text json = text("ExtraActions"); json.hasCharacters()) {
    setExtraActions(TamzoExtraActions::fromJson(json));
  }
  setInvalidCachedOfferIds(text("InvalidCachedOfferIds"));
  setGratificationInfo(text("GratificationInfo"));
  setGratificationTime(text("GratificationTime"));
  setWebViewBaseUrl(text("WebViewBaseUrl"));  // a second time, as the ad server's list has it
  setComScoreCreativeId(text("ComscoreCreativeId"));
  setComScoreCampaignId(text("ComscoreCampaignId"));
  setComScorePlacementId(text("ComscorePlacementId"));
  setVideoPlacementType(text("VideoPlacementType"));
  setIsCoppaEnabled(boolValue(text("CoppaEnabled")));
  setIsImaEnabled(boolValue(text("ImaTracking")));
  setIs360Video(boolValue(text("Is360Video")));
  if (const Text flag = text("isOMIDEnabled"); flag.hasCharacters()) {
    setIsOMIDEnable(boolValue(flag));
  }
  setBid(doubleValue(text("vc")));
  updateOverlay(vendorNodes);
  updateCards(vendorNodes);
  updateSkipOffsetOfVendor(vendorNodes);
  updateHotspots(vendorNodes);
  updateAdditionalWebSetting(vendorNodes.nodesUnderFirst("AdditionalWebSettings"));
  updateReplay(vendorNodes);
  setTrackId(text("TrackId"));
  setServerUA(text("ServerUA"));
  setDeviceIP(text("DeviceIp"));
  setOmidPartner(text("OMIDPartner"));
  setPlayerCapability(text("PlayerCapability"));
  setInventoryState(text("InventoryState"));
  setGDPRConsentInfo(text("GDPRConsent"));
  setVastVersions(text("VastVersions"));
  setApiFrameworks(text("APIFrameworks"));
  setVerificationVendors(text("VerificationVendors"));
  setSupportedExtension(text("SupportedExtension"));
  setMimeType(text("MimeType"));
  setClickType(text("ClickType"));
  setClientUA(text("ClientUA"));
}

void TamzoVastAd::updateOverlay(const NodeList& vendorNodes) {
  const DDXMLElement first = vendorNodes.firstMatch("AdOverlay");
  if (!first) {
    return;
  }
  const NodeList overlay = NodeList::of(first);
  setOverlayDimensionRatioNode(
      floatValue(getSingleValueFromNode(overlay, "AdOverlayDimensionRatio")));
  setOverlayUrl(getSingleValueFromNode(overlay, "AdOverlayUrl"));
}

// A block without cards empties the list.
void TamzoVastAd::updateCards(const NodeList& vendorNodes) {
  setCards(makeList<std::shared_ptr<TamzoCard>>());
  for (const DDXMLElement& card : vendorNodes.nodesUnderFirst("Cards/Card")) {
    cards()->push_back(TamzoCard::initWithNode(card));
  }
}

// Overrides the attribute of the Linear, which is read before the extensions are.
void TamzoVastAd::updateSkipOffsetOfVendor(const NodeList& vendorNodes) {
  if (const DDXMLElement offset = vendorNodes.firstMatch("SkipOffset")) {
    updateSkipOffset(offset.stringValue());
  }
}

void TamzoVastAd::updateHotspots(const NodeList& vendorNodes) {
  const NodeList hotspots = vendorNodes.nodesUnderFirst("Video360/Hotspots/Hotspot");
  if (hotspots.empty()) {
    return;
  }
  setHotspotList(makeList<std::shared_ptr<TamzoHotspot360Info>>());
  for (const DDXMLElement& element : hotspots) {
    if (auto hotspot = TamzoHotspot360Info::initWithNode(element)) {
      hotspotList()->push_back(std::move(hotspot));
    } else {
      TAMZO_LOG("Hotspot XML parsing error");
    }
  }
}

// The URL to call on replay; that there is one is what allows replay.
void TamzoVastAd::updateReplay(const NodeList& vendorNodes) {
  const Text url = vendorNodes.firstMatch("canReplay").stringValue();
  if (!url.hasCharacters()) {
    return;
  }
  auto event = TamzoTrackerEvent::init();
  event->setUrl(url);
  auto events = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  events->push_back(std::move(event));
  trackerMap().set(Text::literal("canReplay"), std::move(events));
  setCanReplay(true);
}

}  // namespace tamzo
