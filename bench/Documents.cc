#include "bench/Documents.h"

#include <cmath>
#include <random>
#include <stdexcept>
#include <utility>

namespace tamzo::bench {
namespace {

// Writes one response. Whatever varies comes from the engine itself and not from a distribution,
// whose output differs between standard libraries.
class ResponseWriter {
 public:
  explicit ResponseWriter(std::uint64_t seed) : random_(seed) {}

  std::string take() { return std::move(out_); }
  std::size_t size() const { return out_.size(); }

  ResponseWriter& raw(std::string_view text) {
    out_ += text;
    return *this;
  }
  ResponseWriter& line(std::string_view text) {
    out_.append(2 * depth_, ' ');
    out_ += text;
    out_ += '\n';
    return *this;
  }
  ResponseWriter& open(std::string_view tag) {
    line("<" + std::string(tag) + ">");
    ++depth_;
    return *this;
  }
  ResponseWriter& close(std::string_view name) {
    --depth_;
    return line("</" + std::string(name) + ">");
  }
  ResponseWriter& element(std::string_view tag, std::string_view content) {
    const std::string name(tag.substr(0, tag.find(' ')));
    return line("<" + std::string(tag) + ">" + std::string(content) + "</" + name + ">");
  }

  std::string hex(std::size_t digits) {
    static constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < digits; ++i) {
      text += kDigits[random_() % kDigits.size()];
    }
    return text;
  }
  std::string number(std::uint64_t below) { return std::to_string(random_() % below); }
  std::string url(std::string_view path) {
    return "https://t" + number(9) + ".ads.example/" + std::string(path) + "?c=" + hex(12) +
           "&amp;cb=[CACHEBUSTING]&amp;ts=" + hex(6);
  }
  std::string cdataUrl(std::string_view path) {
    return "<![CDATA[https://t" + number(9) + ".ads.example/" + std::string(path) +
           "?c=" + hex(12) + "&cb=[CACHEBUSTING]&ts=" + hex(6) + "]]>";
  }

  void begin(std::string_view version, std::string_view moreAttributes = "") {
    line("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    open("VAST version=\"" + std::string(version) + "\"" + std::string(moreAttributes));
    open("Ad id=\"" + hex(10) + "\"");
  }
  void beginInLine(std::size_t impressions) {
    open("InLine");
    element("AdSystem version=\"1.0\"", "Example Exchange");
    element("AdTitle", "Campaign " + hex(8));
    addImpressions(impressions);
  }
  void addImpressions(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      element("Impression id=\"i" + number(1000) + "\"", cdataUrl("impression"));
    }
  }
  void addTracking(std::size_t count) {
    static constexpr std::array<std::string_view, 15> kEvents{
        "start",    "firstQuartile",  "midpoint", "thirdQuartile", "complete",
        "mute",     "unmute",         "pause",    "resume",        "rewind",
        "progress", "playerCollapse", "skip",     "closeLinear",   "creativeView"};
    open("TrackingEvents");
    for (std::size_t i = 0; i < count; ++i) {
      const std::string_view event = kEvents[i % kEvents.size()];
      const std::string offset =
          event == "progress" ? " offset=\"00:00:" + std::to_string(10 + i % 50) + "\"" : "";
      element("Tracking event=\"" + std::string(event) + "\"" + offset, cdataUrl("track"));
    }
    close("TrackingEvents");
  }
  void addClicks(bool withCustomClick) {
    open("VideoClicks");
    element("ClickThrough", cdataUrl("click"));
    element("ClickTracking", cdataUrl("clicked"));
    if (withCustomClick) {
      element("CustomClick", cdataUrl("custom"));
    }
    close("VideoClicks");
  }
  void addMediaFiles(std::size_t count) {
    open("MediaFiles");
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t height = 180 * (i + 1);
      element("MediaFile delivery=\"progressive\" type=\"video/mp4\" width=\"" +
                  std::to_string(height * 16 / 9) + "\" height=\"" + std::to_string(height) +
                  "\" bitrate=\"" + std::to_string(400 * (i + 1)) + "\" scalable=\"true\"",
              "<![CDATA[https://cdn.ads.example/" + hex(16) + ".mp4]]>");
    }
    close("MediaFiles");
  }
  void addIcons(std::size_t count) {
    open("Icons");
    for (std::size_t i = 0; i < count; ++i) {
      open("Icon program=\"Program" + std::to_string(i) +
           "\" width=\"20\" height=\"20\" xPosition=\"right\" yPosition=\"top\"");
      element("StaticResource creativeType=\"image/png\"",
              "<![CDATA[https://cdn.ads.example/" + hex(8) + ".png]]>");
      close("Icon");
    }
    close("Icons");
  }
  void addCompanions(std::size_t count) {
    open("Creative");
    open("CompanionAds");
    for (std::size_t i = 0; i < count; ++i) {
      open("Companion id=\"" + hex(4) + "\" width=\"300\" height=\"250\"");
      element("StaticResource creativeType=\"image/jpeg\"",
              "<![CDATA[https://cdn.ads.example/" + hex(12) + ".jpg]]>");
      element("CompanionClickThrough", cdataUrl("companion"));
      close("Companion");
    }
    close("CompanionAds");
    close("Creative");
  }
  void addVerification() {
    open("Verification vendor=\"vendor" + hex(3) + ".example-omid\"");
    element("JavaScriptResource apiFramework=\"omid\" browserOptional=\"true\"",
            "<![CDATA[https://v.example/omid-" + hex(6) + ".js]]>");
    element("VerificationParameters", "<![CDATA[{\"k\":\"" + hex(16) + "\"}]]>");
    close("Verification");
  }
  void addVendorBlock();
  void end(std::string_view kind) {
    close(kind);
    close("Ad");
    close("VAST");
  }

 private:
  std::mt19937_64 random_;
  std::string out_;
  std::size_t depth_ = 0;
};

// Every child that the record reads from the block: 44 names.
void ResponseWriter::addVendorBlock() {
  open("Tamzo");
  element("ViewabilityAction", "2");
  element("WebViewBaseUrl", "https://w.example/");
  element("Analytics", "moat");
  element("AnalyticsKey", hex(12));
  element("AnalyticsData", "{\"level1\":\"" + hex(6) + "\"}");
  element("NielsenKey", hex(8));
  element("NielsenUrl", "https://n.example/" + hex(4));
  element("NielsenCI", hex(6));
  element("NielsenCA", hex(6));
  element("NielsenPlacementId", hex(6));
  element("NielsenCreativeId", hex(6));
  element("ExtraActions", "[{\"type\":\"share\",\"id\":" + number(100) + "}]");
  element("InvalidCachedOfferIds", number(9999) + "," + number(9999));
  element("GratificationInfo", "coins");
  element("GratificationTime", "15");
  element("ComscoreCreativeId", hex(6));
  element("ComscoreCampaignId", hex(6));
  element("ComscorePlacementId", hex(6));
  element("VideoPlacementType", "interstitial");
  element("CoppaEnabled", "false");
  element("ImaTracking", "0");
  element("Is360Video", "true");
  element("isOMIDEnabled", "true");
  element("vc", "1.2" + number(9));
  open("AdOverlay");
  element("AdOverlayDimensionRatio", "0.25");
  element("AdOverlayUrl", "https://o.example/" + hex(4));
  close("AdOverlay");
  open("Cards");
  element("Card id=\"1\"", "c" + hex(3));
  element("Card id=\"2\"", "c" + hex(3));
  close("Cards");
  element("SkipOffset", "00:00:05");
  open("Video360");
  element("Hotspots", "<Hotspot x=\"1\" y=\"2\"/>");
  close("Video360");
  open("AdditionalWebSettings");
  element("canZoom", "true");
  element("canOpenExternal", "true");
  element("canAutoPlay", "true");
  element("canScroll", "false");
  element("shouldAskPermission", "false");
  close("AdditionalWebSettings");
  element("canReplay", url("replay"));
  element("TrackId", hex(16));
  element("ServerUA", "server/1.0");
  element("DeviceIp", "192.0.2." + number(250));
  element("OMIDPartner", "Tamzo");
  element("PlayerCapability", "skip,mute");
  element("InventoryState", "fullscreen");
  element("GDPRConsent", "BO" + hex(12));
  element("VastVersions", "2,3,5,6");
  element("APIFrameworks", "2,7");
  element("VerificationVendors", "moat,ias");
  element("SupportedExtension", "AdVerifications");
  element("MimeType", "video/mp4");
  element("ClickType", "1");
  element("ClientUA", "client/1.0");
  close("Tamzo");
}

std::string smallResponse(std::uint64_t seed, std::string_view attributes) {
  ResponseWriter out(seed);
  out.begin("4.0", attributes);
  out.beginInLine(2);
  out.element("Category authority=\"iabtechlab.com\"", "IAB1-1");
  out.open("Creatives");
  out.open("Creative");
  out.element("UniversalAdId idRegistry=\"ad-id.org\" idValue=\"" + out.hex(8) + "\"", "");
  out.open("Linear skipoffset=\"00:00:05\"");
  out.element("Duration", "00:00:15");
  out.addTracking(6);
  out.addClicks(false);
  out.addMediaFiles(2);
  out.close("Linear").close("Creative").close("Creatives");
  out.end("InLine");
  return out.take();
}

std::string wrapper(std::uint64_t seed, const std::string& tagUrl) {
  ResponseWriter out(seed);
  out.begin("4.0");
  out.open("Wrapper");
  out.element("AdSystem", "Example Exchange");
  out.element("VASTAdTagURI", "<![CDATA[" + tagUrl + "]]>");
  out.addImpressions(1);
  out.open("Creatives");
  out.open("Creative");
  out.open("Linear");
  out.addTracking(5);
  out.close("Linear").close("Creative").close("Creatives");
  out.open("Extensions").element("Extension type=\"waterfall\"", "").close("Extensions");
  out.end("Wrapper");
  return out.take();
}

void require(bool holds, const std::string& what) {
  if (!holds) {
    throw std::runtime_error("the record is not whole: " + what);
  }
}

std::size_t countOf(const TamzoVastAd& record, std::string_view name) {
  const TrackerList events = record.trackers()->find(name);
  return events == nullptr ? 0 : events->size();
}

void requireFull(const TamzoVastAd& ad) {
  require(ad.clientUA().view() == "client/1.0", "last child of the vendor block");
  require(ad.viewabilityAction() == 2 && ad.is360Video(), "vendor numbers and flags");
  require(std::abs(ad.bid() - 1.2) < 0.1, "bid");
  require(ad.cards() != nullptr && ad.cards()->size() == 2, "cards");
  require(ad.hotspotList() != nullptr && ad.hotspotList()->size() == 1, "hotspots");
  require(ad.extraActions().isList() && ad.extraActions().list()->size() == 5, "extra actions");
  require(ad.canZoom() && ad.canReplay() && countOf(ad, "canReplay") == 1, "replay");
  require(ad.skipOffsetMillis() == 5000.0, "skip offset");
  require(ad.mediaFiles()->size() == 6, "media files");
  require(countOf(ad, "Impression") == 3 && countOf(ad, "start") == 2, "trackers");
  require(countOf(ad, "CustomClickTracker") == 1 && countOf(ad, "Viewable") == 1, "click, view");
  require(ad.getMostSuitableCompanion() != nullptr &&
              ad.getMostSuitableCompanion()->companions().size() == 2,
          "companions");
  require(ad.measurementProviderList()->size() == 2, "verifications");
}

}  // namespace

std::string fullVast4(std::uint64_t seed) {
  ResponseWriter out(seed);
  out.begin("4.2");
  out.beginInLine(3);
  out.element("Category authority=\"iabtechlab.com\"", "IAB1-1");
  out.element("Expires", "3600");
  out.open("ViewableImpression id=\"" + out.hex(4) + "\"");
  out.element("Viewable", out.cdataUrl("viewable"));
  out.element("NotViewable", out.cdataUrl("not"));
  out.close("ViewableImpression");
  out.element("UniversalAdId idRegistry=\"ad-id.org\" idValue=\"" + out.hex(8) + "\"", "");
  out.open("Creatives");
  out.open("Creative id=\"" + out.hex(6) + "\"");
  out.open("Linear skipoffset=\"00:00:08\"");
  out.element("Duration", "00:00:30");
  out.addTracking(30);
  out.addClicks(true);
  out.addMediaFiles(6);
  out.addIcons(4);
  out.close("Linear").close("Creative");
  out.addCompanions(2);
  out.close("Creatives");
  out.open("Extensions");
  out.open("Extension type=\"AdVerifications\"").open("AdVerifications");
  out.addVerification();
  out.addVerification();
  out.close("AdVerifications").close("Extension");
  out.open("Extension type=\"Tamzo\"");
  out.addVendorBlock();
  out.close("Extension").close("Extensions");
  out.end("InLine");
  return out.take();
}

std::string plainVast3(std::uint64_t seed) {
  ResponseWriter out(seed);
  out.begin("3.0");
  out.beginInLine(2);
  out.open("Creatives");
  out.open("Creative sequence=\"1\"");
  out.open("Linear skipoffset=\"20%\"");
  out.element("Duration", "00:00:30");
  out.addTracking(12);
  out.addClicks(false);
  out.addMediaFiles(4);
  out.addIcons(1);
  out.close("Linear").close("Creative");
  out.addCompanions(1);
  out.close("Creatives");
  out.open("Extensions").element("Extension type=\"waterfall\"", "<Price>1.5</Price>");
  out.close("Extensions");
  out.end("InLine");
  return out.take();
}

std::string largeVast4(std::uint64_t seed) {
  constexpr std::size_t kTrackingEvents = 5400;
  constexpr std::size_t kImpressions = 2200;
  ResponseWriter out(seed);
  out.begin("4.1");
  out.beginInLine(kImpressions);
  out.open("Creatives");
  out.open("Creative");
  out.open("Linear");
  out.element("Duration", "00:00:30");
  out.addTracking(kTrackingEvents);
  out.addClicks(false);
  out.addMediaFiles(3);
  out.close("Linear").close("Creative").close("Creatives");
  out.end("InLine");
  return out.take();
}

std::string smallVast4(std::uint64_t seed) { return smallResponse(seed, ""); }

std::string smallVast4WithNamespace(std::uint64_t seed) {
  return smallResponse(seed, " xmlns=\"http://www.iab.com/VAST\" id=\"response\"");
}

Chain wrapperChain(std::uint64_t seed) {
  Chain chain;
  const auto url = [](int pass) { return "https://ads.example/vast/" + std::to_string(pass); };
  chain.response = wrapper(seed, url(2));
  chain.bodies[url(2)] = wrapper(seed + 1, url(3));
  chain.bodies[url(3)] = wrapper(seed + 2, url(4));
  chain.bodies[url(4)] = smallVast4(seed + 3);
  return chain;
}

void requireSize(const DocumentKind& kind, const std::string& text) {
  if (text.size() < kind.minBytes || text.size() > kind.maxBytes) {
    throw std::runtime_error("document " + std::string(kind.name) + " has " +
                             std::to_string(text.size()) + " bytes");
  }
}

void requireWholeRecord(std::string_view name, const TamzoVastAd& ad) {
  require(ad.errorCode() == 0, "errorCode " + std::to_string(ad.errorCode()));
  require(ad.adID().view().size() == 10, "adID");
  require(ad.duration() != nullptr && !ad.mediaFiles()->empty(), "duration, media");
  require(ad.clickThrough().hasCharacters() && countOf(ad, "ClickTracking") == 1, "clicks");
  if (name == "a") {
    requireFull(ad);
  } else if (name == "b") {
    require(countOf(ad, "Impression") == 2 && ad.mediaFiles()->size() == 4, "impressions, media");
    require(ad.getMostSuitableCompanion() != nullptr, "companion");
  } else if (name == "c") {
    require(countOf(ad, "Impression") == 2200 && countOf(ad, "start") == 360, "trackers");
  } else if (name == "e") {
    require(countOf(ad, "Impression") == 5 && countOf(ad, "start") == 4, "the chain's trackers");
  } else {
    require(countOf(ad, "Impression") == 2 && ad.mediaFiles()->size() == 2, "impressions, media");
    require(ad.categoryArray()->size() == 1 && ad.skipOffsetMillis() == 5000.0, "category, skip");
  }
}

}  // namespace tamzo::bench
