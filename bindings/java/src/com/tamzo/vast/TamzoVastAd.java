package com.tamzo.vast;

import java.util.List;
import java.util.Map;
import java.util.Objects;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/**
 * The record of one ad: a copy that cannot be changed and needs no closing. Nil is null here. The
 * spellings of the properties are those of the SDK, and are meant.
 */
public final class TamzoVastAd {
  // The properties below are written by scripts/generate-record.py.

  /** Id of the first Ad of the outermost document, as written; nil when it has none. */
  public final @Nullable String adID;

  /**
   * At first the response. After a Wrapper, the URL of the document behind it, macros filled and
   * white space at both ends taken off when it is fetched; "" when the Wrapper has none. For a
   * JavaScript VPAID ad behind Wrappers, the text of one document that merges the chain.
   */
  public final @Nullable String vastTagURI;

  /**
   * Where a click on the video leads: the last ClickThrough of the Linear that has text,
   * untrimmed; nil when there is none.
   */
  public final @Nullable String clickThrough;

  /** How long the Linear is: whole seconds, and the text as written. Null when it does not say. */
  public final @Nullable AdDuration duration;

  /**
   * When the viewer may skip, in milliseconds from the start; 0 when the ad does not say. Of the
   * Linear or, over that, of the vendor's {@code SkipOffset}. May be negative, infinite or NaN, as
   * the ad server has it: {@code -5%}, {@code 1e999%}, and that without a duration.
   */
  public final double skipOffsetMillis;

  /**
   * 0, or why the ad failed: one of the codes in tamzo/vast/ErrorCodes.h. The code that was set
   * last wins. A chain of six Wrappers ends with 0 and has nothing to play.
   */
  public final int errorCode;

  /** What the ad pays, in the ad server's own unit: the vendor's {@code vc}. */
  public final double bid;

  /**
   * Tracking URLs by event name, over the whole chain, outermost document first. Never null after
   * a parse.
   */
  public final @Nullable Map<String, List<Tracker>> trackers;

  /**
   * Reserved: the parser never adds to it, and tracks an offset that it lists all the same. Never
   * null after initWithVast.
   */
  public final @Nullable List<String> trackersOffset;

  /**
   * One entry for each document of the chain that has companions, outermost first. Never null
   * after a parse.
   */
  public final @Nullable List<CompanionAd> companionAds;

  /** Every MediaFile of the Linear, in document order. Never null after a parse. */
  public final @Nullable List<MediaFile> mediaFiles;

  /** The click elements of an icon; null until getImageAd is called. */
  public final @Nullable Map<String, VastElement> iconMap;

  /**
   * The cards of the vendor's {@code Cards/Card}, whose elements the player reads. Null before the
   * first vendor block; a block without cards empties it.
   */
  public final @Nullable List<VastElement> cards;

  /** The vendor's {@code Analytics}. */
  public final @Nullable String analytics;

  /** The vendor's {@code AnalyticsKey}: Moat's partner code on the VPAID page. */
  public final @Nullable String analyticsKey;

  /** The vendor's {@code AnalyticsData}: Moat's data on the VPAID page, JSON. */
  public final @Nullable String analyticsData;

  /**
   * "" until an extension brings verifications for Moat; from then on the very object of
   * moatViewImpressionStr.
   */
  public final @Nullable String moatVastIds;

  /**
   * The markup of every ViewableImpression for Moat, one after the other. Not nil after
   * initWithVast; it grows over parses.
   */
  public final @Nullable String moatViewImpressionStr;

  /** The vendor's {@code NielsenKey}. */
  public final @Nullable String nielsenKey;

  /** The vendor's {@code NielsenUrl}. */
  public final @Nullable String nielsenUrl;

  /** The vendor's {@code NielsenCI}. */
  public final @Nullable String nielsenCI;

  /** The vendor's {@code NielsenCA}. */
  public final @Nullable String nielsenCA;

  /** The vendor's {@code NielsenPlacementId}. */
  public final @Nullable String nielsenPlacementId;

  /** The vendor's {@code NielsenCreativeId}. */
  public final @Nullable String nielsenCreativeId;

  /** The vendor's {@code ViewabilityAction}. */
  public final int viewabilityAction;

  /**
   * The icons of the Linear, one a program, and the vendor's {@code ExtraActions}. An empty list
   * at first; nil when the vendor's JSON is malformed.
   */
  public final @Nullable ExtraActions extraActions;

  /** The vendor's {@code VideoPlacementType}. */
  public final @Nullable String VideoPlacementType;

  /** The ad is for children: the vendor's {@code CoppaEnabled}. */
  public final boolean isCoppaEnabled;

  /** The vendor's {@code InvalidCachedOfferIds}. */
  public final @Nullable String invalidCachedOfferIds;

  /** The vendor's {@code GratificationInfo}. */
  public final @Nullable String gratificationInfo;

  /** The vendor's {@code GratificationTime}, as it stands: no time is made of it. */
  public final @Nullable String gratificationTime;

  /** The vendor's {@code WebViewBaseUrl}. */
  public final @Nullable String webViewBaseUrl;

  /** The vendor's {@code ComscoreCreativeId}. */
  public final @Nullable String comScoreCreativeId;

  /** The vendor's {@code ComscoreCampaignId}. */
  public final @Nullable String comScoreCampaignId;

  /** The vendor's {@code ComscorePlacementId}. */
  public final @Nullable String comScorePlacementId;

  /**
   * An overlay's share of the video: the vendor's {@code AdOverlay/AdOverlayDimensionRatio}. Kept
   * by a block without an {@code AdOverlay}.
   */
  public final float overlayDimensionRatioNode;

  /**
   * What an overlay shows: the vendor's {@code AdOverlay/AdOverlayUrl}. Kept by a block without an
   * {@code AdOverlay}.
   */
  public final @Nullable String overlayUrl;

  /**
   * The response as parseVast was given it: after the clean-up of {@code xmlns=}, when
   * initWithVast called it.
   */
  public final @Nullable String vastResponseStr;

  /** The video is a 360-degree one: the vendor's {@code Is360Video}. */
  public final boolean is360Video;

  /**
   * Another component plays the ad: the vendor's {@code ImaTracking}. Set, it ends the chain, and
   * vastTagURI holds the URL that was not fetched. It stays set: a second parse of the record
   * reads nothing until it is set back.
   */
  public final boolean isImaEnabled;

  /**
   * The hotspots of a 360-degree video: the vendor's {@code Video360/Hotspots/Hotspot}. Null until
   * a block has any.
   */
  public final @Nullable List<VastElement> hotspotList;

  /** The record of the last Wrapper met, linked to those around it; null without a Wrapper. */
  public final @Nullable VpaidXml vpaidXml;

  /** The {@code version} of the last document read; nil when that has none. */
  public final @Nullable String vpaidVastVersion;

  /**
   * Verification resources for Open Measurement, over the whole chain. Never null after a parse;
   * it grows over parses.
   */
  public final @Nullable List<Verification> measurementProviderList;

  /** The web view may zoom: the vendor's {@code AdditionalWebSettings/canZoom}. */
  public final boolean canZoom;

  /** Links may leave the app: the vendor's {@code AdditionalWebSettings/canOpenExternal}. */
  public final boolean canOpenExternal;

  /** Media may start by themselves: the vendor's {@code AdditionalWebSettings/canAutoPlay}. */
  public final boolean canAutoPlay;

  /** The web view may scroll: the vendor's {@code AdditionalWebSettings/canScroll}. */
  public final boolean canScroll;

  /** The viewer is asked first: the vendor's {@code AdditionalWebSettings/shouldAskPermission}. */
  public final boolean shouldAskPermission;

  /**
   * The ad may be played again: the vendor's {@code canReplay} holds a URL, which is in {@code
   * trackers} under that name. Kept by a block without one.
   */
  public final boolean canReplay;

  /**
   * Open Measurement is on; true unless the vendor's {@code isOMIDEnabled} says otherwise. Kept by
   * a block without it.
   */
  public final boolean isOMIDEnable;

  /**
   * The InLine's Expires as a number, as the ad server means it (seconds in IAB VAST); 0 when it
   * does not say. VAST 4.
   */
  public final double expires;

  /**
   * Every Category of the InLine, as it stands. Never null after a parse; it grows over parses,
   * and every entry may block, those of earlier parses too. VAST 4.
   */
  public final @Nullable List<String> categoryArray;

  /** The vendor's {@code TrackId}. */
  public final @Nullable String trackId;

  /** The vendor's {@code ServerUA}. */
  public final @Nullable String serverUA;

  /** The vendor's {@code DeviceIp}. */
  public final @Nullable String deviceIP;

  /** The vendor's {@code OMIDPartner}. */
  public final @Nullable String omidPartner;

  /** The vendor's {@code PlayerCapability}. */
  public final @Nullable String playerCapability;

  /** The vendor's {@code InventoryState}. */
  public final @Nullable String inventoryState;

  /** The vendor's {@code GDPRConsent}. */
  public final @Nullable String GDPRConsentInfo;

  /** The vendor's {@code VastVersions}. */
  public final @Nullable String vastVersions;

  /** The vendor's {@code APIFrameworks}. */
  public final @Nullable String apiFrameworks;

  /** The vendor's {@code VerificationVendors}. */
  public final @Nullable String verificationVendors;

  /** The {@code idRegistry} of the InLine's first UniversalAdId; nil when it has none. VAST 4. */
  public final @Nullable String univversalIDRegistry;

  /** The {@code idValue} of the InLine's first UniversalAdId; nil when it has none. VAST 4. */
  public final @Nullable String universalIDValue;

  /** The vendor's {@code SupportedExtension}. */
  public final @Nullable String supportedExtension;

  /** The vendor's {@code MimeType}. */
  public final @Nullable String mimeType;

  /** The vendor's {@code ClickType}. */
  public final @Nullable String clickType;

  /** The vendor's {@code ClientUA}. */
  public final @Nullable String clientUA;

  /**
   * The ad has a JavaScript VPAID unit: show the page of getVideoWAPView. In VAST 2 and 3 such an
   * ad has no media files, duration, click-through or icons of its own.
   */
  public final boolean jsVPaidPresent;

  /** Reserved: the parser never sets it. */
  public final boolean flashVPaidPresent;

  /** The page that getVideoWAPView built last; nil before. */
  public final @Nullable String vPaidHTML;

  /** In the order of the table. */
  TamzoVastAd(RecordReader in) {
    adID = in.text();
    vastTagURI = in.text();
    clickThrough = in.text();
    duration = in.duration();
    skipOffsetMillis = in.real();
    errorCode = in.integer();
    bid = in.real();
    trackers = in.trackers();
    trackersOffset = in.texts();
    companionAds = in.companionAds();
    mediaFiles = in.mediaFiles();
    iconMap = in.namedElements();
    cards = in.elements(VastElement.CARDS);
    analytics = in.text();
    analyticsKey = in.text();
    analyticsData = in.text();
    moatVastIds = in.text();
    moatViewImpressionStr = in.text();
    nielsenKey = in.text();
    nielsenUrl = in.text();
    nielsenCI = in.text();
    nielsenCA = in.text();
    nielsenPlacementId = in.text();
    nielsenCreativeId = in.text();
    viewabilityAction = in.integer();
    extraActions = in.extraActions();
    VideoPlacementType = in.text();
    isCoppaEnabled = in.flag();
    invalidCachedOfferIds = in.text();
    gratificationInfo = in.text();
    gratificationTime = in.text();
    webViewBaseUrl = in.text();
    comScoreCreativeId = in.text();
    comScoreCampaignId = in.text();
    comScorePlacementId = in.text();
    overlayDimensionRatioNode = in.shortReal();
    overlayUrl = in.text();
    vastResponseStr = in.text();
    is360Video = in.flag();
    isImaEnabled = in.flag();
    hotspotList = in.elements(VastElement.HOTSPOTS);
    vpaidXml = in.vpaidXml();
    vpaidVastVersion = in.text();
    measurementProviderList = in.verifications();
    canZoom = in.flag();
    canOpenExternal = in.flag();
    canAutoPlay = in.flag();
    canScroll = in.flag();
    shouldAskPermission = in.flag();
    canReplay = in.flag();
    isOMIDEnable = in.flag();
    expires = in.real();
    categoryArray = in.texts();
    trackId = in.text();
    serverUA = in.text();
    deviceIP = in.text();
    omidPartner = in.text();
    playerCapability = in.text();
    inventoryState = in.text();
    GDPRConsentInfo = in.text();
    vastVersions = in.text();
    apiFrameworks = in.text();
    verificationVendors = in.text();
    univversalIDRegistry = in.text();
    universalIDValue = in.text();
    supportedExtension = in.text();
    mimeType = in.text();
    clickType = in.text();
    clientUA = in.text();
    jsVPaidPresent = in.flag();
    flashVPaidPresent = in.flag();
    vPaidHTML = in.text();
    mostSuitableCompanion = in.integer();
    in.end();
  }

  // The properties above are written by scripts/generate-record.py.

  private final int mostSuitableCompanion;

  /**
   * As {@link #parse(String, ParseOptions)}, with every limit and hook at its default.
   *
   * @param response a response, or a URL that begins with "http"
   * @return the record, also of a failed ad
   */
  public static @NotNull TamzoVastAd parse(@NotNull String response) {
    return parse(response, ParseOptions.DEFAULT);
  }

  /**
   * As {@link #parse(byte[], ParseOptions)}. Half of a surrogate pair is read as U+FFFD.
   *
   * @param response a response, or a URL that begins with "http"
   * @param options what bounds the parse
   * @return the record, also of a failed ad
   */
  public static @NotNull TamzoVastAd parse(
      @NotNull String response, @NotNull ParseOptions options) {
    return parse(Utf8.encode(response), options);
  }

  /**
   * As {@link #parse(byte[], ParseOptions)}, with every limit and hook at its default.
   *
   * @param response a response, or a URL that begins with "http"
   * @return the record, also of a failed ad
   */
  public static @NotNull TamzoVastAd parse(byte @NotNull [] response) {
    return parse(response, ParseOptions.DEFAULT);
  }

  /**
   * Parses an ad server's response, or what it gives when it is a URL that begins with "http", and
   * follows its Wrappers; blocks meanwhile. Gives a record also for a failed ad, whose errorCode
   * says why.
   *
   * @param response a response, or a URL that begins with "http"
   * @param options what bounds the parse
   * @return the record, also of a failed ad
   * @throws IllegalStateException where the options' cancellation was closed
   */
  public static @NotNull TamzoVastAd parse(
      byte @NotNull [] response, @NotNull ParseOptions options) {
    Objects.requireNonNull(response, "response");
    Objects.requireNonNull(options, "options");
    byte[] record =
        options.lend(
            (handle, hooks, which) -> Native.parse(response, handle, hooks, which, null));
    return new TamzoVastAd(new RecordReader(record, new Object()));
  }

  /**
   * Why the ad failed.
   *
   * @return {@link VastError#SUCCESS} where it did not; null for a code that is none of the library's
   */
  public @Nullable VastError error() {
    return VastError.of(errorCode);
  }

  /**
   * The companions of the first document of the chain that had any.
   *
   * @return one of companionAds; null when there are none
   */
  public @Nullable CompanionAd mostSuitableCompanion() {
    return mostSuitableCompanion < 0 ? null : companionAds.get(mostSuitableCompanion);
  }
}
