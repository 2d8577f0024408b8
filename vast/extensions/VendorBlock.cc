// The ad server's own settings.

#include "vast/extensions/VendorBlock.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <utility>

#include "base/Numbers.h"
#include "tamzo/sdk/TamzoLogger.h"

namespace tamzo {
namespace {

using Ad = TamzoVastAd;
using enum VendorReading;
using enum VendorAbsence;

Text textOf(const DDXMLElement& element) {
  return element ? element.stringValue() : Text::literal("");
}

// What is made of a text before it is set.
template <VendorReading>
constexpr auto kConvert = std::identity();
template <>
constexpr auto kConvert<integer> = integerValue;
template <>
constexpr auto kConvert<flag> = boolValue;
template <>
constexpr auto kConvert<number> = doubleValue;
template <>
constexpr auto kConvert<json> = TamzoExtraActions::fromJson;

// A setting that is the text of a child of the block.
template <auto kSet, VendorReading kReading = text, VendorAbsence kAbsence = reset>
constexpr VendorSetting row(std::string_view element, std::string_view property) {
  return {element, property, kReading, kAbsence,
          [](Ad& ad, const NodeList&, const DDXMLElement& child) {
            const Text value = textOf(child);
            if (kAbsence != keptAlsoWhenEmpty || value.hasCharacters()) {
              (ad.*kSet)(kConvert<kReading>(value));
            }
          }};
}

// The same for a flag, whose setter must be told from its deleted twin.
template <void (TamzoVastAdProperties::*kSet)(bool), VendorAbsence kAbsence = reset>
constexpr VendorSetting flagRow(std::string_view element, std::string_view property) {
  return row<kSet, flag, kAbsence>(element, property);
}

void readOverlayRatio(Ad& ad, const NodeList&, const DDXMLElement& overlay) {
  ad.setOverlayDimensionRatioNode(
      floatValue(overlay.firstNodeForXPath("AdOverlayDimensionRatio").stringValue()));
}

void readOverlayUrl(Ad& ad, const NodeList&, const DDXMLElement& overlay) {
  ad.setOverlayUrl(textOf(overlay.firstNodeForXPath("AdOverlayUrl")));
}

// Here and below, several parents count like one.
void readCards(Ad& ad, const NodeList& block, const DDXMLElement& first) {
  ad.setCards(makeList<std::shared_ptr<TamzoCard>>());
  for (const DDXMLElement& card : first ? block.nodesUnderFirst("Cards/Card") : NodeList()) {
    ad.cards()->push_back(TamzoCard::initWithNode(card));
  }
}

void readHotspots(Ad& ad, const NodeList& block, const DDXMLElement&) {
  const NodeList hotspots = block.nodesUnderFirst("Video360/Hotspots/Hotspot");
  if (hotspots.empty()) {
    return;
  }
  const auto list = makeList<std::shared_ptr<TamzoHotspot360Info>>();
  ad.setHotspotList(list);
  for (const DDXMLElement& element : hotspots) {
    if (auto hotspot = TamzoHotspot360Info::initWithNode(element)) {
      list->push_back(std::move(hotspot));
    } else {
      TAMZO_LOG("Hotspot XML parsing error");
    }
  }
}

void readWebSettings(Ad& ad, const NodeList&, const DDXMLElement& settings) {
  ad.updateAdditionalWebSetting(NodeList::of(settings));
}

// In this order. A later block overwrites an earlier one whole, save for what is kept. Names of
// elements are matched as they stand here, whatever their case looks like.
constexpr auto kSettings = std::to_array<VendorSetting>({
    row<&Ad::setViewabilityAction, integer>("ViewabilityAction", "viewabilityAction"),
    row<&Ad::setWebViewBaseUrl>("WebViewBaseUrl", "webViewBaseUrl"),
    row<&Ad::setAnalytics>("Analytics", "analytics"),
    row<&Ad::setAnalyticsKey>("AnalyticsKey", "analyticsKey"),
    row<&Ad::setAnalyticsData>("AnalyticsData", "analyticsData"),
    row<&Ad::setNielsenKey>("NielsenKey", "nielsenKey"),
    row<&Ad::setNielsenUrl>("NielsenUrl", "nielsenUrl"),
    row<&Ad::setNielsenCI>("NielsenCI", "nielsenCI"),
    row<&Ad::setNielsenCA>("NielsenCA", "nielsenCA"),
    row<&Ad::setNielsenPlacementId>("NielsenPlacementId", "nielsenPlacementId"),
    row<&Ad::setNielsenCreativeId>("NielsenCreativeId", "nielsenCreativeId"),
    row<&Ad::setExtraActions, json, keptAlsoWhenEmpty>("ExtraActions", "extraActions"),
    row<&Ad::setInvalidCachedOfferIds>("InvalidCachedOfferIds", "invalidCachedOfferIds"),
    row<&Ad::setGratificationInfo>("GratificationInfo", "gratificationInfo"),
    row<&Ad::setGratificationTime>("GratificationTime", "gratificationTime"),
    // A second time, as the ad server's list has it.
    row<&Ad::setWebViewBaseUrl>("WebViewBaseUrl", "webViewBaseUrl"),
    row<&Ad::setComScoreCreativeId>("ComscoreCreativeId", "comScoreCreativeId"),
    row<&Ad::setComScoreCampaignId>("ComscoreCampaignId", "comScoreCampaignId"),
    row<&Ad::setComScorePlacementId>("ComscorePlacementId", "comScorePlacementId"),
    row<&Ad::setVideoPlacementType>("VideoPlacementType", "VideoPlacementType"),
    flagRow<&Ad::setIsCoppaEnabled>("CoppaEnabled", "isCoppaEnabled"),
    flagRow<&Ad::setIsImaEnabled>("ImaTracking", "isImaEnabled"),
    flagRow<&Ad::setIs360Video>("Is360Video", "is360Video"),
    flagRow<&Ad::setIsOMIDEnable, keptAlsoWhenEmpty>("isOMIDEnabled", "isOMIDEnable"),
    row<&Ad::setBid, number>("vc", "bid"),
    {"AdOverlay/AdOverlayDimensionRatio", "overlayDimensionRatioNode", singlePrecision, kept,
     readOverlayRatio},
    {"AdOverlay/AdOverlayUrl", "overlayUrl", text, kept, readOverlayUrl},
    {"Cards/Card", "cards", cards, reset, readCards},
    // Overrides the attribute of the Linear, which is read before the extensions are.
    row<&Ad::updateSkipOffset, skipOffset, kept>("SkipOffset", "skipOffsetMillis"),
    {"Video360/Hotspots/Hotspot", "hotspotList", hotspots, kept, readHotspots},
    {"AdditionalWebSettings",
     "canZoom, canOpenExternal, canAutoPlay, canScroll, shouldAskPermission", webSettings, kept,
     readWebSettings},
    row<&Ad::updateReplay, url, keptAlsoWhenEmpty>("canReplay",
                                                   "canReplay, trackers[\"canReplay\"]"),
    row<&Ad::setTrackId>("TrackId", "trackId"),
    row<&Ad::setServerUA>("ServerUA", "serverUA"),
    row<&Ad::setDeviceIP>("DeviceIp", "deviceIP"),
    row<&Ad::setOmidPartner>("OMIDPartner", "omidPartner"),
    row<&Ad::setPlayerCapability>("PlayerCapability", "playerCapability"),
    row<&Ad::setInventoryState>("InventoryState", "inventoryState"),
    row<&Ad::setGDPRConsentInfo>("GDPRConsent", "GDPRConsentInfo"),
    row<&Ad::setVastVersions>("VastVersions", "vastVersions"),
    row<&Ad::setApiFrameworks>("APIFrameworks", "apiFrameworks"),
    row<&Ad::setVerificationVendors>("VerificationVendors", "verificationVendors"),
    row<&Ad::setSupportedExtension>("SupportedExtension", "supportedExtension"),
    row<&Ad::setMimeType>("MimeType", "mimeType"),
    row<&Ad::setClickType>("ClickType", "clickType"),
    row<&Ad::setClientUA>("ClientUA", "clientUA"),
});

// The children of the block that rows begin with, as firstChildren wants them.
constexpr auto kChildren = [] {
  std::array<std::string_view, kSettings.size()> names{};
  std::transform(kSettings.begin(), kSettings.end(), names.begin(),
                 [](const auto& setting) { return XPath::firstStep(setting.element); });
  std::sort(names.begin(), names.end());
  return names;
}();

static_assert(kChildren.size() <= std::numeric_limits<std::uint8_t>::max(), "no place for more");

// What a parse needs of a row: the place of its child among them, and how that is read. Rows of one
// child share the first place of its name.
struct Reader {
  decltype(VendorSetting::read) read;
  std::uint8_t place;
  bool resets;
};

constexpr auto kReaders = [] {
  std::array<Reader, kSettings.size()> readers{};
  std::transform(kSettings.begin(), kSettings.end(), readers.begin(), [](const auto& setting) {
    const std::string_view name = XPath::firstStep(setting.element);
    const auto* at = std::lower_bound(kChildren.begin(), kChildren.end(), name);
    return Reader{setting.read, static_cast<std::uint8_t>(at - kChildren.begin()),
                  setting.absence == reset};
  });
  return readers;
}();

}  // namespace

std::span<const VendorSetting> vendorSettings() noexcept { return kSettings; }

void TamzoVastAd::updateTamzoExtensions(const NodeList& vendorNodes) {
  if (vendorNodes.empty()) {
    return;
  }
  const auto children = vendorNodes.at(0).firstChildren(kChildren);
  for (const Reader& reader : kReaders) {
    const DDXMLElement& child = children[reader.place];
    if (child || reader.resets) {
      reader.read(*this, vendorNodes, child);
    }
  }
}

void TamzoVastAd::updateReplay(const Text& url) {
  auto events = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  events->push_back(makeTracker(url, Text()));  // an offset was never set
  trackerMap().set(Text::literal("canReplay"), std::move(events));
  setCanReplay(true);
}

}  // namespace tamzo
