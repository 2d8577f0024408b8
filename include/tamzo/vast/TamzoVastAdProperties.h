// Written by scripts/generate-record.py from vast/TamzoVastAdProperties.def.

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "tamzo/base/Export.h"
#include "tamzo/base/List.h"
#include "tamzo/base/Text.h"
#include "tamzo/sdk/TamzoAdDuration.h"
#include "tamzo/sdk/TamzoCard.h"
#include "tamzo/sdk/TamzoCompanionAd.h"
#include "tamzo/sdk/TamzoExtraActions.h"
#include "tamzo/sdk/TamzoHotspot360Info.h"
#include "tamzo/sdk/TamzoMacroReplacementUtil.h"
#include "tamzo/sdk/TamzoMeasurementProviderModel.h"
#include "tamzo/sdk/TamzoMediaFile.h"
#include "tamzo/sdk/TamzoTrackerEvent.h"
#include "tamzo/sdk/TamzoVpaidXML.h"
#include "tamzo/vast/ErrorCodes.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

/// Elements by key; the keys are "iconClickTracking" and "iconClickThrough".
using IconMap = std::map<std::string, DDXMLElement, std::less<>>;

/// The 72 properties of a TamzoVastAd. Each has a getter of its name and a setter, which
/// do nothing but read and store; the spellings are those that the SDK reads, and are meant.
///
/// A text or list is nil until something writes it, and nil is not empty. A setting of the vendor
/// block is nil, 0 or false before the first block; a later block that leaves it out makes it "",
/// 0 or false again, unless the property says that it is kept. A setter keeps the very object that
/// it is given, and the getter returns it.
///
/// Nothing here locks: one thread fills a record, and any number may read one that nobody changes.
class TAMZO_EXPORT TamzoVastAdProperties : public MacroValues {
 public:
  /// @name Identity and outcome
  /// @{

  /// Id of the first Ad of the outermost document, as written; nil when it has none.
  const Text& adID() const noexcept { return adID_; }
  /// Sets adID().
  void setAdID(Text value) noexcept { adID_ = std::move(value); }

  /// At first the response. After a Wrapper, the URL of the document behind it, macros filled and
  /// white space at both ends taken off when it is fetched; "" when the Wrapper has none. For a
  /// JavaScript VPAID ad behind Wrappers, the text of one document that merges the chain.
  const Text& vastTagURI() const noexcept { return vastTagURI_; }
  /// Sets vastTagURI().
  void setVastTagURI(Text value) noexcept { vastTagURI_ = std::move(value); }

  /// 0, or why the ad failed: one of the codes in tamzo/vast/ErrorCodes.h. The code that was set
  /// last wins. A chain of six Wrappers ends with 0 and has nothing to play.
  std::int32_t errorCode() const noexcept { return errorCode_; }
  /// Sets errorCode().
  void setErrorCode(std::int32_t value) noexcept { errorCode_ = value; }

  /// The response as parseVast() was given it: after the clean-up of `xmlns=`, when initWithVast()
  /// called it.
  const Text& vastResponseStr() const noexcept { return vastResponseStr_; }
  /// Sets vastResponseStr().
  void setVastResponseStr(Text value) noexcept { vastResponseStr_ = std::move(value); }

  /// The `version` of the last document read; nil when that has none.
  const Text& vpaidVastVersion() const noexcept { return vpaidVastVersion_; }
  /// Sets vpaidVastVersion().
  void setVpaidVastVersion(Text value) noexcept { vpaidVastVersion_ = std::move(value); }

  /// The `idRegistry` of the InLine's first UniversalAdId; nil when it has none. VAST 4.
  const Text& univversalIDRegistry() const noexcept { return univversalIDRegistry_; }
  /// Sets univversalIDRegistry().
  void setUnivversalIDRegistry(Text value) noexcept { univversalIDRegistry_ = std::move(value); }

  /// The `idValue` of the InLine's first UniversalAdId; nil when it has none. VAST 4.
  const Text& universalIDValue() const noexcept { return universalIDValue_; }
  /// Sets universalIDValue().
  void setUniversalIDValue(Text value) noexcept { universalIDValue_ = std::move(value); }

  /// @}

  /// @name What is played
  /// @{

  /// How long the Linear is: whole seconds, and the text as written. Null when it does not say.
  const std::shared_ptr<TamzoAdDuration>& duration() const noexcept { return duration_; }
  /// Sets duration().
  void setDuration(std::shared_ptr<TamzoAdDuration> value) noexcept {
    duration_ = std::move(value);
  }

  /// When the viewer may skip, in milliseconds from the start; 0 when the ad does not say. Of the
  /// Linear or, over that, of the vendor's `SkipOffset`. May be negative, infinite or NaN, as the
  /// ad server has it: `-5%`, `1e999%`, and that without a duration.
  double skipOffsetMillis() const noexcept { return skipOffsetMillis_; }
  /// Sets skipOffsetMillis().
  void setSkipOffsetMillis(double value) noexcept { skipOffsetMillis_ = value; }

  /// Every MediaFile of the Linear, in document order. Never null after a parse.
  const List<std::shared_ptr<TamzoMediaFile>>& mediaFiles() const noexcept { return mediaFiles_; }
  /// Sets mediaFiles().
  void setMediaFiles(List<std::shared_ptr<TamzoMediaFile>> value) noexcept {
    mediaFiles_ = std::move(value);
  }

  /// An overlay's share of the video: the vendor's `AdOverlay/AdOverlayDimensionRatio`. Kept by a
  /// block without an `AdOverlay`.
  float overlayDimensionRatioNode() const noexcept { return overlayDimensionRatioNode_; }
  /// Sets overlayDimensionRatioNode().
  void setOverlayDimensionRatioNode(float value) noexcept { overlayDimensionRatioNode_ = value; }

  /// What an overlay shows: the vendor's `AdOverlay/AdOverlayUrl`. Kept by a block without an
  /// `AdOverlay`.
  const Text& overlayUrl() const noexcept { return overlayUrl_; }
  /// Sets overlayUrl().
  void setOverlayUrl(Text value) noexcept { overlayUrl_ = std::move(value); }

  /// The video is a 360-degree one: the vendor's `Is360Video`.
  bool is360Video() const noexcept { return is360Video_; }
  /// Sets is360Video().
  void setIs360Video(bool value) noexcept { is360Video_ = value; }
  template <typename T>
  void setIs360Video(const T*) = delete;  ///< "false" is no flag.

  /// The hotspots of a 360-degree video: the vendor's `Video360/Hotspots/Hotspot`. Null until a
  /// block has any.
  const List<std::shared_ptr<TamzoHotspot360Info>>& hotspotList() const noexcept {
    return hotspotList_;
  }
  /// Sets hotspotList().
  void setHotspotList(List<std::shared_ptr<TamzoHotspot360Info>> value) noexcept {
    hotspotList_ = std::move(value);
  }

  /// The ad may be played again: the vendor's `canReplay` holds a URL, which is in `trackers` under
  /// that name. Kept by a block without one.
  bool canReplay() const noexcept { return canReplay_; }
  /// Sets canReplay().
  void setCanReplay(bool value) noexcept { canReplay_ = value; }
  template <typename T>
  void setCanReplay(const T*) = delete;  ///< "false" is no flag.

  /// @}

  /// @name What is shown beside it
  /// @{

  /// Where a click on the video leads: the last ClickThrough of the Linear that has text,
  /// untrimmed; nil when there is none.
  const Text& clickThrough() const noexcept { return clickThrough_; }
  /// Sets clickThrough().
  void setClickThrough(Text value) noexcept { clickThrough_ = std::move(value); }

  /// One entry for each document of the chain that has companions, outermost first. Never null
  /// after a parse.
  const List<std::shared_ptr<TamzoCompanionAd>>& companionAds() const noexcept {
    return companionAds_;
  }
  /// Sets companionAds().
  void setCompanionAds(List<std::shared_ptr<TamzoCompanionAd>> value) noexcept {
    companionAds_ = std::move(value);
  }

  /// The click elements of an icon; null until getImageAd() is called.
  const std::shared_ptr<IconMap>& iconMap() const noexcept { return iconMap_; }
  /// Sets iconMap().
  void setIconMap(std::shared_ptr<IconMap> value) noexcept { iconMap_ = std::move(value); }

  /// The cards of the vendor's `Cards/Card`, whose elements the player reads. Null before the first
  /// vendor block; a block without cards empties it.
  const List<std::shared_ptr<TamzoCard>>& cards() const noexcept { return cards_; }
  /// Sets cards().
  void setCards(List<std::shared_ptr<TamzoCard>> value) noexcept { cards_ = std::move(value); }

  /// The icons of the Linear, one a program, and the vendor's `ExtraActions`. An empty list at
  /// first; nil when the vendor's JSON is malformed.
  const TamzoExtraActions& extraActions() const noexcept { return extraActions_; }
  /// Sets extraActions().
  void setExtraActions(TamzoExtraActions value) noexcept { extraActions_ = std::move(value); }

  /// @}

  /// @name What is fired
  /// @{

  /// Tracking URLs by event name, over the whole chain, outermost document first. Never null after
  /// a parse.
  const std::shared_ptr<TrackerMap>& trackers() const noexcept { return trackers_; }
  /// Sets trackers().
  void setTrackers(std::shared_ptr<TrackerMap> value) noexcept { trackers_ = std::move(value); }

  /// Reserved: the parser never adds to it, and tracks an offset that it lists all the same. Never
  /// null after initWithVast().
  const List<Text>& trackersOffset() const noexcept { return trackersOffset_; }
  /// Sets trackersOffset().
  void setTrackersOffset(List<Text> value) noexcept { trackersOffset_ = std::move(value); }

  /// @}

  /// @name What is measured
  /// @{

  /// The vendor's `Analytics`.
  const Text& analytics() const noexcept { return analytics_; }
  /// Sets analytics().
  void setAnalytics(Text value) noexcept { analytics_ = std::move(value); }

  /// The vendor's `AnalyticsKey`: Moat's partner code on the VPAID page.
  const Text& analyticsKey() const noexcept { return analyticsKey_; }
  /// Sets analyticsKey().
  void setAnalyticsKey(Text value) noexcept { analyticsKey_ = std::move(value); }

  /// The vendor's `AnalyticsData`: Moat's data on the VPAID page, JSON.
  const Text& analyticsData() const noexcept { return analyticsData_; }
  /// Sets analyticsData().
  void setAnalyticsData(Text value) noexcept { analyticsData_ = std::move(value); }

  /// "" until an extension brings verifications for Moat; from then on the very object of
  /// moatViewImpressionStr().
  const Text& moatVastIds() const noexcept { return moatVastIds_; }
  /// Sets moatVastIds().
  void setMoatVastIds(Text value) noexcept { moatVastIds_ = std::move(value); }

  /// The markup of every ViewableImpression for Moat, one after the other. Not nil after
  /// initWithVast(); it grows over parses.
  const MutableText& moatViewImpressionStr() const noexcept { return moatViewImpressionStr_; }
  /// Sets moatViewImpressionStr().
  void setMoatViewImpressionStr(MutableText value) noexcept {
    moatViewImpressionStr_ = std::move(value);
  }

  /// The vendor's `NielsenKey`.
  const Text& nielsenKey() const noexcept { return nielsenKey_; }
  /// Sets nielsenKey().
  void setNielsenKey(Text value) noexcept { nielsenKey_ = std::move(value); }

  /// The vendor's `NielsenUrl`.
  const Text& nielsenUrl() const noexcept { return nielsenUrl_; }
  /// Sets nielsenUrl().
  void setNielsenUrl(Text value) noexcept { nielsenUrl_ = std::move(value); }

  /// The vendor's `NielsenCI`.
  const Text& nielsenCI() const noexcept { return nielsenCI_; }
  /// Sets nielsenCI().
  void setNielsenCI(Text value) noexcept { nielsenCI_ = std::move(value); }

  /// The vendor's `NielsenCA`.
  const Text& nielsenCA() const noexcept { return nielsenCA_; }
  /// Sets nielsenCA().
  void setNielsenCA(Text value) noexcept { nielsenCA_ = std::move(value); }

  /// The vendor's `NielsenPlacementId`.
  const Text& nielsenPlacementId() const noexcept { return nielsenPlacementId_; }
  /// Sets nielsenPlacementId().
  void setNielsenPlacementId(Text value) noexcept { nielsenPlacementId_ = std::move(value); }

  /// The vendor's `NielsenCreativeId`.
  const Text& nielsenCreativeId() const noexcept { return nielsenCreativeId_; }
  /// Sets nielsenCreativeId().
  void setNielsenCreativeId(Text value) noexcept { nielsenCreativeId_ = std::move(value); }

  /// The vendor's `ViewabilityAction`.
  std::int32_t viewabilityAction() const noexcept { return viewabilityAction_; }
  /// Sets viewabilityAction().
  void setViewabilityAction(std::int32_t value) noexcept { viewabilityAction_ = value; }

  /// The vendor's `ComscoreCreativeId`.
  const Text& comScoreCreativeId() const noexcept { return comScoreCreativeId_; }
  /// Sets comScoreCreativeId().
  void setComScoreCreativeId(Text value) noexcept { comScoreCreativeId_ = std::move(value); }

  /// The vendor's `ComscoreCampaignId`.
  const Text& comScoreCampaignId() const noexcept { return comScoreCampaignId_; }
  /// Sets comScoreCampaignId().
  void setComScoreCampaignId(Text value) noexcept { comScoreCampaignId_ = std::move(value); }

  /// The vendor's `ComscorePlacementId`.
  const Text& comScorePlacementId() const noexcept { return comScorePlacementId_; }
  /// Sets comScorePlacementId().
  void setComScorePlacementId(Text value) noexcept { comScorePlacementId_ = std::move(value); }

  /// Verification resources for Open Measurement, over the whole chain. Never null after a parse;
  /// it grows over parses.
  const List<std::shared_ptr<TamzoMeasurementProviderModel>>& measurementProviderList()
      const noexcept {
    return measurementProviderList_;
  }
  /// Sets measurementProviderList().
  void setMeasurementProviderList(
      List<std::shared_ptr<TamzoMeasurementProviderModel>> value) noexcept {
    measurementProviderList_ = std::move(value);
  }

  /// Open Measurement is on; true unless the vendor's `isOMIDEnabled` says otherwise. Kept by a
  /// block without it.
  bool isOMIDEnable() const noexcept { return isOMIDEnable_; }
  /// Sets isOMIDEnable().
  void setIsOMIDEnable(bool value) noexcept { isOMIDEnable_ = value; }
  template <typename T>
  void setIsOMIDEnable(const T*) = delete;  ///< "false" is no flag.

  /// @}

  /// @name How the web view behaves
  /// The flags are published for the whole SDK as well: TamzoState::getTamzoWebSettings().
  /// @{

  /// The vendor's `WebViewBaseUrl`.
  const Text& webViewBaseUrl() const noexcept { return webViewBaseUrl_; }
  /// Sets webViewBaseUrl().
  void setWebViewBaseUrl(Text value) noexcept { webViewBaseUrl_ = std::move(value); }

  /// The web view may zoom: the vendor's `AdditionalWebSettings/canZoom`.
  bool canZoom() const noexcept { return canZoom_; }
  /// Sets canZoom().
  void setCanZoom(bool value) noexcept { canZoom_ = value; }
  template <typename T>
  void setCanZoom(const T*) = delete;  ///< "false" is no flag.

  /// Links may leave the app: the vendor's `AdditionalWebSettings/canOpenExternal`.
  bool canOpenExternal() const noexcept { return canOpenExternal_; }
  /// Sets canOpenExternal().
  void setCanOpenExternal(bool value) noexcept { canOpenExternal_ = value; }
  template <typename T>
  void setCanOpenExternal(const T*) = delete;  ///< "false" is no flag.

  /// Media may start by themselves: the vendor's `AdditionalWebSettings/canAutoPlay`.
  bool canAutoPlay() const noexcept { return canAutoPlay_; }
  /// Sets canAutoPlay().
  void setCanAutoPlay(bool value) noexcept { canAutoPlay_ = value; }
  template <typename T>
  void setCanAutoPlay(const T*) = delete;  ///< "false" is no flag.

  /// The web view may scroll: the vendor's `AdditionalWebSettings/canScroll`.
  bool canScroll() const noexcept { return canScroll_; }
  /// Sets canScroll().
  void setCanScroll(bool value) noexcept { canScroll_ = value; }
  template <typename T>
  void setCanScroll(const T*) = delete;  ///< "false" is no flag.

  /// The viewer is asked first: the vendor's `AdditionalWebSettings/shouldAskPermission`.
  bool shouldAskPermission() const noexcept { return shouldAskPermission_; }
  /// Sets shouldAskPermission().
  void setShouldAskPermission(bool value) noexcept { shouldAskPermission_ = value; }
  template <typename T>
  void setShouldAskPermission(const T*) = delete;  ///< "false" is no flag.

  /// @}

  /// @name Selling and policy
  /// @{

  /// What the ad pays, in the ad server's own unit: the vendor's `vc`.
  double bid() const noexcept { return bid_; }
  /// Sets bid().
  void setBid(double value) noexcept { bid_ = value; }

  /// The vendor's `VideoPlacementType`.
  const Text& VideoPlacementType() const noexcept { return VideoPlacementType_; }
  /// Sets VideoPlacementType().
  void setVideoPlacementType(Text value) noexcept { VideoPlacementType_ = std::move(value); }

  /// The vendor's `InvalidCachedOfferIds`.
  const Text& invalidCachedOfferIds() const noexcept { return invalidCachedOfferIds_; }
  /// Sets invalidCachedOfferIds().
  void setInvalidCachedOfferIds(Text value) noexcept { invalidCachedOfferIds_ = std::move(value); }

  /// The vendor's `GratificationInfo`.
  const Text& gratificationInfo() const noexcept { return gratificationInfo_; }
  /// Sets gratificationInfo().
  void setGratificationInfo(Text value) noexcept { gratificationInfo_ = std::move(value); }

  /// The vendor's `GratificationTime`, as it stands: no time is made of it.
  const Text& gratificationTime() const noexcept { return gratificationTime_; }
  /// Sets gratificationTime().
  void setGratificationTime(Text value) noexcept { gratificationTime_ = std::move(value); }

  /// Another component plays the ad: the vendor's `ImaTracking`. Set, it ends the chain, and
  /// vastTagURI() holds the URL that was not fetched. It stays set: a second parse of the record
  /// reads nothing until it is set back.
  bool isImaEnabled() const noexcept { return isImaEnabled_; }
  /// Sets isImaEnabled().
  void setIsImaEnabled(bool value) noexcept { isImaEnabled_ = value; }
  template <typename T>
  void setIsImaEnabled(const T*) = delete;  ///< "false" is no flag.

  /// The InLine's Expires as a number, as the ad server means it (seconds in IAB VAST); 0 when it
  /// does not say. VAST 4.
  double expires() const noexcept { return expires_; }
  /// Sets expires().
  void setExpires(double value) noexcept { expires_ = value; }

  /// Every Category of the InLine, as it stands. Never null after a parse; it grows over parses,
  /// and every entry may block, those of earlier parses too. VAST 4.
  const List<Text>& categoryArray() const noexcept { return categoryArray_; }
  /// Sets categoryArray().
  void setCategoryArray(List<Text> value) noexcept { categoryArray_ = std::move(value); }

  /// The vendor's `TrackId`.
  const Text& trackId() const noexcept { return trackId_; }
  /// Sets trackId().
  void setTrackId(Text value) noexcept { trackId_ = std::move(value); }

  /// @}

  /// @name The request and the player
  /// These fill macros in the tag URLs of later Wrappers.
  /// @{

  /// The ad is for children: the vendor's `CoppaEnabled`.
  bool isCoppaEnabled() const noexcept override { return isCoppaEnabled_; }
  /// Sets isCoppaEnabled().
  void setIsCoppaEnabled(bool value) noexcept { isCoppaEnabled_ = value; }
  template <typename T>
  void setIsCoppaEnabled(const T*) = delete;  ///< "false" is no flag.

  /// The vendor's `ServerUA`.
  const Text& serverUA() const noexcept override { return serverUA_; }
  /// Sets serverUA().
  void setServerUA(Text value) noexcept { serverUA_ = std::move(value); }

  /// The vendor's `DeviceIp`.
  const Text& deviceIP() const noexcept override { return deviceIP_; }
  /// Sets deviceIP().
  void setDeviceIP(Text value) noexcept { deviceIP_ = std::move(value); }

  /// The vendor's `OMIDPartner`.
  const Text& omidPartner() const noexcept override { return omidPartner_; }
  /// Sets omidPartner().
  void setOmidPartner(Text value) noexcept { omidPartner_ = std::move(value); }

  /// The vendor's `PlayerCapability`.
  const Text& playerCapability() const noexcept override { return playerCapability_; }
  /// Sets playerCapability().
  void setPlayerCapability(Text value) noexcept { playerCapability_ = std::move(value); }

  /// The vendor's `InventoryState`.
  const Text& inventoryState() const noexcept override { return inventoryState_; }
  /// Sets inventoryState().
  void setInventoryState(Text value) noexcept { inventoryState_ = std::move(value); }

  /// The vendor's `GDPRConsent`.
  const Text& GDPRConsentInfo() const noexcept override { return GDPRConsentInfo_; }
  /// Sets GDPRConsentInfo().
  void setGDPRConsentInfo(Text value) noexcept { GDPRConsentInfo_ = std::move(value); }

  /// The vendor's `VastVersions`.
  const Text& vastVersions() const noexcept override { return vastVersions_; }
  /// Sets vastVersions().
  void setVastVersions(Text value) noexcept { vastVersions_ = std::move(value); }

  /// The vendor's `APIFrameworks`.
  const Text& apiFrameworks() const noexcept override { return apiFrameworks_; }
  /// Sets apiFrameworks().
  void setApiFrameworks(Text value) noexcept { apiFrameworks_ = std::move(value); }

  /// The vendor's `VerificationVendors`.
  const Text& verificationVendors() const noexcept override { return verificationVendors_; }
  /// Sets verificationVendors().
  void setVerificationVendors(Text value) noexcept { verificationVendors_ = std::move(value); }

  /// The vendor's `SupportedExtension`.
  const Text& supportedExtension() const noexcept override { return supportedExtension_; }
  /// Sets supportedExtension().
  void setSupportedExtension(Text value) noexcept { supportedExtension_ = std::move(value); }

  /// The vendor's `MimeType`.
  const Text& mimeType() const noexcept override { return mimeType_; }
  /// Sets mimeType().
  void setMimeType(Text value) noexcept { mimeType_ = std::move(value); }

  /// The vendor's `ClickType`.
  const Text& clickType() const noexcept override { return clickType_; }
  /// Sets clickType().
  void setClickType(Text value) noexcept { clickType_ = std::move(value); }

  /// The vendor's `ClientUA`.
  const Text& clientUA() const noexcept override { return clientUA_; }
  /// Sets clientUA().
  void setClientUA(Text value) noexcept { clientUA_ = std::move(value); }

  /// @}

  /// @name JavaScript VPAID
  /// @{

  /// The record of the last Wrapper met, linked to those around it; null without a Wrapper.
  const std::shared_ptr<TamzoVpaidXML>& vpaidXml() const noexcept { return vpaidXml_; }
  /// Sets vpaidXml().
  void setVpaidXml(std::shared_ptr<TamzoVpaidXML> value) noexcept { vpaidXml_ = std::move(value); }

  /// The ad has a JavaScript VPAID unit: show the page of getVideoWAPView(). In VAST 2 and 3 such
  /// an ad has no media files, duration, click-through or icons of its own.
  bool jsVPaidPresent() const noexcept { return jsVPaidPresent_; }
  /// Sets jsVPaidPresent().
  void setJsVPaidPresent(bool value) noexcept { jsVPaidPresent_ = value; }
  template <typename T>
  void setJsVPaidPresent(const T*) = delete;  ///< "false" is no flag.

  /// Reserved: the parser never sets it.
  bool flashVPaidPresent() const noexcept { return flashVPaidPresent_; }
  /// Sets flashVPaidPresent().
  void setFlashVPaidPresent(bool value) noexcept { flashVPaidPresent_ = value; }
  template <typename T>
  void setFlashVPaidPresent(const T*) = delete;  ///< "false" is no flag.

  /// The page that getVideoWAPView() built last; nil before.
  const Text& vPaidHTML() const noexcept { return vPaidHTML_; }
  /// Sets vPaidHTML().
  void setVPaidHTML(Text value) noexcept { vPaidHTML_ = std::move(value); }

  /// @}

 protected:
  TamzoVastAdProperties() noexcept = default;
  ~TamzoVastAdProperties() = default;

 private:
  Text adID_{};
  Text vastTagURI_{};
  Text clickThrough_{};
  std::shared_ptr<TamzoAdDuration> duration_{};
  double skipOffsetMillis_{};
  std::int32_t errorCode_{};
  double bid_{};
  std::shared_ptr<TrackerMap> trackers_{};
  List<Text> trackersOffset_{};
  List<std::shared_ptr<TamzoCompanionAd>> companionAds_{};
  List<std::shared_ptr<TamzoMediaFile>> mediaFiles_{};
  std::shared_ptr<IconMap> iconMap_{};
  List<std::shared_ptr<TamzoCard>> cards_{};
  Text analytics_{};
  Text analyticsKey_{};
  Text analyticsData_{};
  Text moatVastIds_{};
  MutableText moatViewImpressionStr_{};
  Text nielsenKey_{};
  Text nielsenUrl_{};
  Text nielsenCI_{};
  Text nielsenCA_{};
  Text nielsenPlacementId_{};
  Text nielsenCreativeId_{};
  std::int32_t viewabilityAction_{};
  TamzoExtraActions extraActions_{};
  Text VideoPlacementType_{};
  bool isCoppaEnabled_{};
  Text invalidCachedOfferIds_{};
  Text gratificationInfo_{};
  Text gratificationTime_{};
  Text webViewBaseUrl_{};
  Text comScoreCreativeId_{};
  Text comScoreCampaignId_{};
  Text comScorePlacementId_{};
  float overlayDimensionRatioNode_{};
  Text overlayUrl_{};
  Text vastResponseStr_{};
  bool is360Video_{};
  bool isImaEnabled_{};
  List<std::shared_ptr<TamzoHotspot360Info>> hotspotList_{};
  std::shared_ptr<TamzoVpaidXML> vpaidXml_{};
  Text vpaidVastVersion_{};
  List<std::shared_ptr<TamzoMeasurementProviderModel>> measurementProviderList_{};
  bool canZoom_{};
  bool canOpenExternal_{};
  bool canAutoPlay_{};
  bool canScroll_{};
  bool shouldAskPermission_{};
  bool canReplay_{};
  bool isOMIDEnable_{};
  double expires_{};
  List<Text> categoryArray_{};
  Text trackId_{};
  Text serverUA_{};
  Text deviceIP_{};
  Text omidPartner_{};
  Text playerCapability_{};
  Text inventoryState_{};
  Text GDPRConsentInfo_{};
  Text vastVersions_{};
  Text apiFrameworks_{};
  Text verificationVendors_{};
  Text univversalIDRegistry_{};
  Text universalIDValue_{};
  Text supportedExtension_{};
  Text mimeType_{};
  Text clickType_{};
  Text clientUA_{};
  bool jsVPaidPresent_{};
  bool flashVPaidPresent_{};
  Text vPaidHTML_{};
};

}  // namespace tamzo
