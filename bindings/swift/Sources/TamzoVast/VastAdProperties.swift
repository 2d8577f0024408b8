// Written by scripts/generate-record.py from vast/TamzoVastAdProperties.def.

// The properties of the record. The spellings are those of the SDK, and are meant.
extension VastAd {
  /// Id of the first Ad of the outermost document, as written; nil when it has none.
  public var adID: String? { read { TamzoVast.text(tamzo_vast_ad_adID($0)) } }

  /// At first the response. After a Wrapper, the URL of the document behind it, macros filled and
  /// white space at both ends taken off when it is fetched; "" when the Wrapper has none. For a
  /// JavaScript VPAID ad behind Wrappers, the text of one document that merges the chain.
  public var vastTagURI: String? { read { TamzoVast.text(tamzo_vast_ad_vastTagURI($0)) } }

  /// Where a click on the video leads: the last ClickThrough of the Linear that has text,
  /// untrimmed; nil when there is none.
  public var clickThrough: String? { read { TamzoVast.text(tamzo_vast_ad_clickThrough($0)) } }

  /// How long the Linear is: whole seconds, and the text as written. Null when it does not say.
  public var duration: VastDuration? { read { TamzoVast.duration(tamzo_vast_ad_duration($0)) } }

  /// When the viewer may skip, in milliseconds from the start; 0 when the ad does not say. Of the
  /// Linear or, over that, of the vendor's `SkipOffset`. May be negative, infinite or NaN, as the
  /// ad server has it: `-5%`, `1e999%`, and that without a duration.
  public var skipOffsetMillis: Double { read { tamzo_vast_ad_skipOffsetMillis($0) } }

  /// 0, or why the ad failed: one of the codes in tamzo/vast/ErrorCodes.h. The code that was set
  /// last wins. A chain of six Wrappers ends with 0 and has nothing to play.
  public var errorCode: Int32 { read { tamzo_vast_ad_errorCode($0) } }

  /// What the ad pays, in the ad server's own unit: the vendor's `vc`.
  public var bid: Double { read { tamzo_vast_ad_bid($0) } }

  /// Tracking URLs by event name, over the whole chain, outermost document first. Never null after
  /// a parse.
  public var trackers: [VastEvent]? { read { TamzoVast.trackers(tamzo_vast_ad_trackers($0)) } }

  /// Reserved: the parser never adds to it, and tracks an offset that it lists all the same. Never
  /// null after initWithVast.
  public var trackersOffset: [String]? { read { TamzoVast.texts(tamzo_vast_ad_trackersOffset($0)) } }

  /// One entry for each document of the chain that has companions, outermost first. Never null
  /// after a parse.
  public var companionAds: [[VastCompanion]]? { read { TamzoVast.companionAds(tamzo_vast_ad_companionAds($0)) } }

  /// Every MediaFile of the Linear, in document order. Never null after a parse.
  public var mediaFiles: [VastMediaFile]? { read { TamzoVast.mediaFiles(tamzo_vast_ad_mediaFiles($0)) } }

  /// The click elements of an icon; null until getImageAd is called.
  public var iconMap: [String: VastElement]? { read { TamzoVast.namedElements(tamzo_vast_ad_iconMap($0)) } }

  /// The cards of the vendor's `Cards/Card`, whose elements the player reads. Null before the first
  /// vendor block; a block without cards empties it.
  public var cards: [VastElement]? { read { TamzoVast.elements(tamzo_vast_ad_cards($0)) } }

  /// The vendor's `Analytics`.
  public var analytics: String? { read { TamzoVast.text(tamzo_vast_ad_analytics($0)) } }

  /// The vendor's `AnalyticsKey`: Moat's partner code on the VPAID page.
  public var analyticsKey: String? { read { TamzoVast.text(tamzo_vast_ad_analyticsKey($0)) } }

  /// The vendor's `AnalyticsData`: Moat's data on the VPAID page, JSON.
  public var analyticsData: String? { read { TamzoVast.text(tamzo_vast_ad_analyticsData($0)) } }

  /// "" until an extension brings verifications for Moat; from then on the very object of
  /// moatViewImpressionStr.
  public var moatVastIds: String? { read { TamzoVast.text(tamzo_vast_ad_moatVastIds($0)) } }

  /// The markup of every ViewableImpression for Moat, one after the other. Not nil after
  /// initWithVast; it grows over parses.
  public var moatViewImpressionStr: String? { read { TamzoVast.text(tamzo_vast_ad_moatViewImpressionStr($0)) } }

  /// The vendor's `NielsenKey`.
  public var nielsenKey: String? { read { TamzoVast.text(tamzo_vast_ad_nielsenKey($0)) } }

  /// The vendor's `NielsenUrl`.
  public var nielsenUrl: String? { read { TamzoVast.text(tamzo_vast_ad_nielsenUrl($0)) } }

  /// The vendor's `NielsenCI`.
  public var nielsenCI: String? { read { TamzoVast.text(tamzo_vast_ad_nielsenCI($0)) } }

  /// The vendor's `NielsenCA`.
  public var nielsenCA: String? { read { TamzoVast.text(tamzo_vast_ad_nielsenCA($0)) } }

  /// The vendor's `NielsenPlacementId`.
  public var nielsenPlacementId: String? { read { TamzoVast.text(tamzo_vast_ad_nielsenPlacementId($0)) } }

  /// The vendor's `NielsenCreativeId`.
  public var nielsenCreativeId: String? { read { TamzoVast.text(tamzo_vast_ad_nielsenCreativeId($0)) } }

  /// The vendor's `ViewabilityAction`.
  public var viewabilityAction: Int32 { read { tamzo_vast_ad_viewabilityAction($0) } }

  /// The icons of the Linear, one a program, and the vendor's `ExtraActions`. An empty list at
  /// first; nil when the vendor's JSON is malformed.
  public var extraActions: VastExtraActions? { read { TamzoVast.extraActions(tamzo_vast_ad_extraActions($0)) } }

  /// The vendor's `VideoPlacementType`.
  public var VideoPlacementType: String? { read { TamzoVast.text(tamzo_vast_ad_VideoPlacementType($0)) } }

  /// The ad is for children: the vendor's `CoppaEnabled`.
  public var isCoppaEnabled: Bool { read { tamzo_vast_ad_isCoppaEnabled($0) } }

  /// The vendor's `InvalidCachedOfferIds`.
  public var invalidCachedOfferIds: String? { read { TamzoVast.text(tamzo_vast_ad_invalidCachedOfferIds($0)) } }

  /// The vendor's `GratificationInfo`.
  public var gratificationInfo: String? { read { TamzoVast.text(tamzo_vast_ad_gratificationInfo($0)) } }

  /// The vendor's `GratificationTime`, as it stands: no time is made of it.
  public var gratificationTime: String? { read { TamzoVast.text(tamzo_vast_ad_gratificationTime($0)) } }

  /// The vendor's `WebViewBaseUrl`.
  public var webViewBaseUrl: String? { read { TamzoVast.text(tamzo_vast_ad_webViewBaseUrl($0)) } }

  /// The vendor's `ComscoreCreativeId`.
  public var comScoreCreativeId: String? { read { TamzoVast.text(tamzo_vast_ad_comScoreCreativeId($0)) } }

  /// The vendor's `ComscoreCampaignId`.
  public var comScoreCampaignId: String? { read { TamzoVast.text(tamzo_vast_ad_comScoreCampaignId($0)) } }

  /// The vendor's `ComscorePlacementId`.
  public var comScorePlacementId: String? { read { TamzoVast.text(tamzo_vast_ad_comScorePlacementId($0)) } }

  /// An overlay's share of the video: the vendor's `AdOverlay/AdOverlayDimensionRatio`. Kept by a
  /// block without an `AdOverlay`.
  public var overlayDimensionRatioNode: Float { read { tamzo_vast_ad_overlayDimensionRatioNode($0) } }

  /// What an overlay shows: the vendor's `AdOverlay/AdOverlayUrl`. Kept by a block without an
  /// `AdOverlay`.
  public var overlayUrl: String? { read { TamzoVast.text(tamzo_vast_ad_overlayUrl($0)) } }

  /// The response as parseVast was given it: after the clean-up of `xmlns=`, when initWithVast
  /// called it.
  public var vastResponseStr: String? { read { TamzoVast.text(tamzo_vast_ad_vastResponseStr($0)) } }

  /// The video is a 360-degree one: the vendor's `Is360Video`.
  public var is360Video: Bool { read { tamzo_vast_ad_is360Video($0) } }

  /// Another component plays the ad: the vendor's `ImaTracking`. Set, it ends the chain, and
  /// vastTagURI holds the URL that was not fetched. It stays set: a second parse of the record
  /// reads nothing until it is set back.
  public var isImaEnabled: Bool { read { tamzo_vast_ad_isImaEnabled($0) } }

  /// The hotspots of a 360-degree video: the vendor's `Video360/Hotspots/Hotspot`. Null until a
  /// block has any.
  public var hotspotList: [VastElement]? { read { TamzoVast.elements(tamzo_vast_ad_hotspotList($0)) } }

  /// The record of the last Wrapper met, linked to those around it; null without a Wrapper.
  public var vpaidXml: VastVpaidXml? { read { TamzoVast.vpaidXml(tamzo_vast_ad_vpaidXml($0)) } }

  /// The `version` of the last document read; nil when that has none.
  public var vpaidVastVersion: String? { read { TamzoVast.text(tamzo_vast_ad_vpaidVastVersion($0)) } }

  /// Verification resources for Open Measurement, over the whole chain. Never null after a parse;
  /// it grows over parses.
  public var measurementProviderList: [VastVerification]? { read { TamzoVast.verifications(tamzo_vast_ad_measurementProviderList($0)) } }

  /// The web view may zoom: the vendor's `AdditionalWebSettings/canZoom`.
  public var canZoom: Bool { read { tamzo_vast_ad_canZoom($0) } }

  /// Links may leave the app: the vendor's `AdditionalWebSettings/canOpenExternal`.
  public var canOpenExternal: Bool { read { tamzo_vast_ad_canOpenExternal($0) } }

  /// Media may start by themselves: the vendor's `AdditionalWebSettings/canAutoPlay`.
  public var canAutoPlay: Bool { read { tamzo_vast_ad_canAutoPlay($0) } }

  /// The web view may scroll: the vendor's `AdditionalWebSettings/canScroll`.
  public var canScroll: Bool { read { tamzo_vast_ad_canScroll($0) } }

  /// The viewer is asked first: the vendor's `AdditionalWebSettings/shouldAskPermission`.
  public var shouldAskPermission: Bool { read { tamzo_vast_ad_shouldAskPermission($0) } }

  /// The ad may be played again: the vendor's `canReplay` holds a URL, which is in `trackers` under
  /// that name. Kept by a block without one.
  public var canReplay: Bool { read { tamzo_vast_ad_canReplay($0) } }

  /// Open Measurement is on; true unless the vendor's `isOMIDEnabled` says otherwise. Kept by a
  /// block without it.
  public var isOMIDEnable: Bool { read { tamzo_vast_ad_isOMIDEnable($0) } }

  /// The InLine's Expires as a number, as the ad server means it (seconds in IAB VAST); 0 when it
  /// does not say. VAST 4.
  public var expires: Double { read { tamzo_vast_ad_expires($0) } }

  /// Every Category of the InLine, as it stands. Never null after a parse; it grows over parses,
  /// and every entry may block, those of earlier parses too. VAST 4.
  public var categoryArray: [String]? { read { TamzoVast.texts(tamzo_vast_ad_categoryArray($0)) } }

  /// The vendor's `TrackId`.
  public var trackId: String? { read { TamzoVast.text(tamzo_vast_ad_trackId($0)) } }

  /// The vendor's `ServerUA`.
  public var serverUA: String? { read { TamzoVast.text(tamzo_vast_ad_serverUA($0)) } }

  /// The vendor's `DeviceIp`.
  public var deviceIP: String? { read { TamzoVast.text(tamzo_vast_ad_deviceIP($0)) } }

  /// The vendor's `OMIDPartner`.
  public var omidPartner: String? { read { TamzoVast.text(tamzo_vast_ad_omidPartner($0)) } }

  /// The vendor's `PlayerCapability`.
  public var playerCapability: String? { read { TamzoVast.text(tamzo_vast_ad_playerCapability($0)) } }

  /// The vendor's `InventoryState`.
  public var inventoryState: String? { read { TamzoVast.text(tamzo_vast_ad_inventoryState($0)) } }

  /// The vendor's `GDPRConsent`.
  public var GDPRConsentInfo: String? { read { TamzoVast.text(tamzo_vast_ad_GDPRConsentInfo($0)) } }

  /// The vendor's `VastVersions`.
  public var vastVersions: String? { read { TamzoVast.text(tamzo_vast_ad_vastVersions($0)) } }

  /// The vendor's `APIFrameworks`.
  public var apiFrameworks: String? { read { TamzoVast.text(tamzo_vast_ad_apiFrameworks($0)) } }

  /// The vendor's `VerificationVendors`.
  public var verificationVendors: String? { read { TamzoVast.text(tamzo_vast_ad_verificationVendors($0)) } }

  /// The `idRegistry` of the InLine's first UniversalAdId; nil when it has none. VAST 4.
  public var univversalIDRegistry: String? { read { TamzoVast.text(tamzo_vast_ad_univversalIDRegistry($0)) } }

  /// The `idValue` of the InLine's first UniversalAdId; nil when it has none. VAST 4.
  public var universalIDValue: String? { read { TamzoVast.text(tamzo_vast_ad_universalIDValue($0)) } }

  /// The vendor's `SupportedExtension`.
  public var supportedExtension: String? { read { TamzoVast.text(tamzo_vast_ad_supportedExtension($0)) } }

  /// The vendor's `MimeType`.
  public var mimeType: String? { read { TamzoVast.text(tamzo_vast_ad_mimeType($0)) } }

  /// The vendor's `ClickType`.
  public var clickType: String? { read { TamzoVast.text(tamzo_vast_ad_clickType($0)) } }

  /// The vendor's `ClientUA`.
  public var clientUA: String? { read { TamzoVast.text(tamzo_vast_ad_clientUA($0)) } }

  /// The ad has a JavaScript VPAID unit: show the page of getVideoWAPView. In VAST 2 and 3 such an
  /// ad has no media files, duration, click-through or icons of its own.
  public var jsVPaidPresent: Bool { read { tamzo_vast_ad_jsVPaidPresent($0) } }

  /// Reserved: the parser never sets it.
  public var flashVPaidPresent: Bool { read { tamzo_vast_ad_flashVPaidPresent($0) } }

  /// The page that getVideoWAPView built last; nil before.
  public var vPaidHTML: String? { read { TamzoVast.text(tamzo_vast_ad_vPaidHTML($0)) } }
}
