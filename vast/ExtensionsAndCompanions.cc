// Extensions and companions: the dispatch over extensions, the vendor block, the web-view
// settings, companion ads, and the page that hosts a JavaScript VPAID unit.

#include <string>
#include <string_view>
#include <utility>

#include "sdk/TamzoAssetsManager.h"
#include "sdk/TamzoLogger.h"
#include "sdk/TamzoState.h"
#include "sdk/TamzoVastAdHelper.h"
#include "sdk/TamzoWebSettings.h"
#include "sdk/TextConversions.h"
#include "vast/TamzoVastAd.h"

namespace tamzo {
namespace {

// Values may hold placeholders of other values, so that a page can grow far beyond what it is made
// of; one of this length is no page any more.
constexpr std::size_t kMaxPageBytes = std::size_t{128} << 20U;

/// A text whose placeholders are filled one after another, until it is too long.
class PageText {
 public:
  explicit PageText(std::string text) noexcept : text_(std::move(text)) {}

  void replaceAll(std::string_view what, std::string_view with) {
    if (isTooLong_) {
      return;
    }
    std::string out;
    std::string_view rest = text_;
    for (std::size_t at = rest.find(what); at != std::string_view::npos; at = rest.find(what)) {
      out += rest.substr(0, at);
      out += with;
      rest.remove_prefix(at + what.size());
      if (out.size() + rest.size() > kMaxPageBytes) {
        isTooLong_ = true;
        return;
      }
    }
    text_ = std::move(out += rest);
  }

  bool isTooLong() const noexcept { return isTooLong_; }
  std::string take() noexcept { return std::move(text_); }

 private:
  std::string text_;
  bool isTooLong_ = false;
};

}  // namespace

// ---- Extensions ------------------------------------------------------------------------------

void TamzoVastAd::updateExtensions(const NodeList& nodes) {
  for (const DDXMLElement& extension : nodes.at(0).nodesForXPath("Extensions/Extension")) {
    const NodeList vendorNodes = extension.nodesForXPath("Tamzo");
    if (!vendorNodes.empty()) {
      updateTamzoExtensions(vendorNodes);
    }
    const NodeList adVerifications = extension.nodesForXPath("AdVerifications");
    if (!adVerifications.empty()) {
      updateMoatAdVerification(adVerifications);
    }
  }
}

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

// A flag that the block does not name is off. The whole SDK sees the settings published last.
void TamzoVastAd::updateAdditionalWebSetting(const NodeList& settings) {
  if (settings.empty()) {
    return;
  }
  const auto flag = [&settings](const XPath& name) {
    return boolValue(getSingleValueFromNode(settings, name));
  };
  setCanZoom(flag("canZoom"));
  setCanOpenExternal(flag("canOpenExternal"));
  setCanAutoPlay(flag("canAutoPlay"));
  setCanScroll(flag("canScroll"));
  setShouldAskPermission(flag("shouldAskPermission"));

  auto published = TamzoWebSettings::init();
  published->setCanZoom(canZoom());
  published->setCanOpenExternal(canOpenExternal());
  published->setCanAutoPlay(canAutoPlay());
  published->setCanScroll(canScroll());
  published->setShouldAskPermission(shouldAskPermission());
  TamzoState::setTamzoWebSettings(std::move(published));
}

// ---- Companions ------------------------------------------------------------------------------

void TamzoVastAd::updateAllCompanionNodes(const NodeList& nodes) {
  const NodeList companions = nodes.nodesUnderFirst("Creatives/Creative/CompanionAds/Companion");
  if (!companions.empty()) {
    updateCompanion(companions);
  }
}

void TamzoVastAd::updateCompanion(const NodeList& companions) {
  if (companionAds() == nullptr) {
    setCompanionAds(makeList<std::shared_ptr<TamzoCompanionAd>>());
  }
  companionAds()->push_back(TamzoCompanionAd::initWithNode(companions));
}

std::shared_ptr<TamzoCompanionAd> TamzoVastAd::getMostSuitableCompanion() const {
  return companionAds() == nullptr || companionAds()->empty() ? nullptr : companionAds()->front();
}

void TamzoVastAd::getImageAd(const DDXMLElement& node) {
  setIconMap(std::make_shared<IconMap>());
  const DDXMLElement icon = TamzoVastAdHelper::getFirstElement(node, "Icons.Icon");
  const auto store = [&](const char* key, std::string_view path) {
    if (const DDXMLElement element = TamzoVastAdHelper::getFirstElement(icon, path)) {
      iconMap()->insert_or_assign(key, element);
    }
  };
  store("iconClickTracking", "IconClicks.IconClickTracking");
  store("iconClickThrough", "IconClicks.IconClickThrough");
}

// ---- The VPAID page --------------------------------------------------------------------------

Text TamzoVastAd::getVideoWAPView() {
  if (!vastTagURI().hasCharacters()) {
    return Text::literal("");
  }
  const Text pageTemplate = TamzoAssetsManager::getVpaidWrapperData();
  if (!pageTemplate.hasCharacters()) {
    return Text::literal("");
  }
  const bool isUrl = vastTagURI().view().starts_with("http");
  PageText filledTag{std::string(vastTagURI().view())};
  filledTag.replaceAll("[TAMZO_SESSION_ID]", TamzoState::getSessionId());
  const std::string tag = isUrl ? filledTag.take() : removeNewlines(filledTag.take());
  const auto orElse = [](const Text& text, std::string_view fallback) {
    return text.hasCharacters() ? text.view() : fallback;
  };
  // One after the other: what a value brings of a later placeholder is filled too.
  PageText page{std::string(pageTemplate.view())};
  page.replaceAll("{{IS_TAG_A_URL}}", isUrl ? "true" : "false");
  page.replaceAll("{{VAST_TAG}}", tag);
  page.replaceAll("{{MOAT_DATA}}", orElse(analyticsData(), "{}"));
  page.replaceAll("{{MOAT_PARTNER_CODE}}", orElse(analyticsKey(), ""));
  if (filledTag.isTooLong() || page.isTooLong()) {
    return Text::literal("");
  }
  setVPaidHTML(Text(page.take()));
  return vPaidHTML();
}

}  // namespace tamzo
