#include "bench/NaiveQueries.h"

#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>

#include <memory>
#include <string>
#include <vector>

namespace tamzo::bench {
namespace {

struct FreeDoc {
  void operator()(xmlDoc* doc) const { xmlFreeDoc(doc); }
};
struct FreeContext {
  void operator()(xmlXPathContext* context) const { xmlXPathFreeContext(context); }
};
struct FreeObject {
  void operator()(xmlXPathObject* object) const { xmlXPathFreeObject(object); }
};
struct FreeText {
  void operator()(xmlChar* text) const { xmlFree(text); }
};
using OwnText = std::unique_ptr<xmlChar, FreeText>;

const xmlChar* asXml(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

class Queries {
 public:
  explicit Queries(xmlDoc* doc) : doc_(doc) {}

  using Nodes = std::vector<xmlNode*>;

  Nodes find(xmlNode* from, const char* path) const {
    Nodes nodes;
    const std::unique_ptr<xmlXPathContext, FreeContext> context(xmlXPathNewContext(doc_));
    context->node = from;
    const std::unique_ptr<xmlXPathObject, FreeObject> result(
        xmlXPathEvalExpression(asXml(path), context.get()));
    if (result != nullptr && result->nodesetval != nullptr) {
      nodes.assign(result->nodesetval->nodeTab,
                   result->nodesetval->nodeTab + result->nodesetval->nodeNr);
    }
    return nodes;
  }
  Nodes find(const Nodes& from, const char* path) const {
    return from.empty() ? Nodes() : find(from.front(), path);
  }
  void text(const Nodes& nodes) {
    for (xmlNode* node : nodes) {
      keep(OwnText(xmlNodeGetContent(node)));
    }
  }
  void firstText(const Nodes& from, const char* path) {
    const Nodes found = find(from, path);
    if (!found.empty()) {
      keep(OwnText(xmlNodeGetContent(found.front())));
    }
  }
  void attribute(xmlNode* node, const char* name) { keep(OwnText(xmlGetProp(node, asXml(name)))); }

  std::size_t texts() const { return texts_.size(); }

 private:
  void keep(const OwnText& text) {
    if (text != nullptr) {
      texts_.emplace_back(reinterpret_cast<const char*>(text.get()));
    }
  }

  xmlDoc* doc_;
  std::vector<std::string> texts_;
};

constexpr const char* kVendorTexts[] = {
    "ViewabilityAction",
    "WebViewBaseUrl",
    "Analytics",
    "AnalyticsKey",
    "AnalyticsData",
    "NielsenKey",
    "NielsenUrl",
    "NielsenCI",
    "NielsenCA",
    "NielsenPlacementId",
    "NielsenCreativeId",
    "ExtraActions",
    "InvalidCachedOfferIds",
    "GratificationInfo",
    "GratificationTime",
    "WebViewBaseUrl",
    "ComscoreCreativeId",
    "ComscoreCampaignId",
    "ComscorePlacementId",
    "VideoPlacementType",
    "CoppaEnabled",
    "ImaTracking",
    "Is360Video",
    "isOMIDEnabled",
    "vc",
    "SkipOffset",
    "canReplay",
    "TrackId",
    "ServerUA",
    "DeviceIp",
    "OMIDPartner",
    "PlayerCapability",
    "InventoryState",
    "GDPRConsent",
    "VastVersions",
    "APIFrameworks",
    "VerificationVendors",
    "SupportedExtension",
    "MimeType",
    "ClickType",
    "ClientUA",
};

void readVendorBlock(Queries& query, const Queries::Nodes& block) {
  for (const char* name : kVendorTexts) {
    query.firstText(block, name);
  }
  const auto overlay = query.find(block, "AdOverlay");
  query.firstText(overlay, "AdOverlayDimensionRatio");
  query.firstText(overlay, "AdOverlayUrl");
  query.find(block, "Cards/Card");
  query.text(query.find(block, "Video360/Hotspots/Hotspot"));
  const auto settings = query.find(block, "AdditionalWebSettings");
  for (const char* name :
       {"canZoom", "canOpenExternal", "canAutoPlay", "canScroll", "shouldAskPermission"}) {
    query.firstText(settings, name);
  }
}

void readCompanion(Queries& query, xmlNode* companion) {
  for (const char* name : {"id", "width", "height", "adSlotId", "apiFramework"}) {
    query.attribute(companion, name);
  }
  for (const char* path :
       {"AltText", "StaticResource", "IFrameResource", "HTMLResource", "CompanionClickThrough",
        "CompanionClickTracking", "TrackingEvents/Tracking"}) {
    query.text(query.find(companion, path));
  }
}

void readVerification(Queries& query, xmlNode* verification) {
  query.attribute(verification, "vendor");
  for (xmlNode* resource : query.find(verification, "JavaScriptResource")) {
    query.text({resource});
    query.attribute(resource, "apiFramework");
    query.attribute(resource, "browserOptional");
  }
  query.text(query.find(verification, "ExecutableResource"));
  query.text(query.find(verification, "VerificationParameters"));
  query.text(query.find(verification, "TrackingEvents/Tracking"));
}

void readExtensions(Queries& query, const Queries::Nodes& inlines) {
  for (xmlNode* extension : query.find(inlines, "Extensions/Extension")) {
    const auto block = query.find(extension, "Tamzo");
    if (!block.empty()) {
      readVendorBlock(query, block);
    }
    for (xmlNode* verifications : query.find(extension, "AdVerifications")) {
      query.find(verifications, "Verification/ViewableImpression");
    }
  }
  const auto providers = query.find(inlines, "Extensions/Extension/AdVerifications");
  for (xmlNode* verification : query.find(providers, "Verification")) {
    readVerification(query, verification);
  }
}

void readLinear(Queries& query, const Queries::Nodes& linears) {
  for (xmlNode* tracking : query.find(linears, "TrackingEvents/Tracking")) {
    query.attribute(tracking, "event");
    query.attribute(tracking, "offset");
    query.text({tracking});
  }
  query.text(query.find(linears, "VideoClicks/ClickTracking"));
  for (xmlNode* icon : query.find(linears, "Icons/Icon")) {
    query.attribute(icon, "program");
  }
  query.firstText(linears, "Duration");
  query.text(query.find(linears, "VideoClicks/ClickThrough"));
  for (xmlNode* file : query.find(linears, "MediaFiles/MediaFile")) {
    query.text({file});
    for (const char* name :
         {"id", "delivery", "type", "codec", "apiFramework", "width", "height", "bitrate",
          "minBitrate", "maxBitrate", "fileSize", "scalable", "maintainAspectRatio"}) {
      query.attribute(file, name);
    }
  }
}

void readVersion4Parts(Queries& query, const Queries::Nodes& inlines) {
  for (xmlNode* impression : query.find(inlines, "ViewableImpression")) {
    query.text(query.find(impression, "Viewable"));
    query.text(query.find(impression, "NotViewable"));
    query.text(query.find(impression, "ViewUndetermined"));
  }
  for (xmlNode* verification : query.find(inlines, "AdVerifications/Verification")) {
    query.text(query.find(verification, "ViewableImpression"));
  }
  query.firstText(inlines, "Expires");
  query.text(query.find(inlines, "Category"));
  for (xmlNode* id : query.find(inlines, "UniversalAdId")) {
    query.attribute(id, "idRegistry");
    query.attribute(id, "idValue");
  }
  query.find(inlines, "Extensions/Extension/Tamzo/ExtraTrackingEvents/Tracking");
}

}  // namespace

std::size_t queryNaively(std::string_view response) {
  const std::unique_ptr<xmlDoc, FreeDoc> doc(
      xmlReadMemory(response.data(), static_cast<int>(response.size()), nullptr, nullptr,
                    XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
  if (doc == nullptr) {
    return 0;
  }
  Queries query(doc.get());
  auto* top = reinterpret_cast<xmlNode*>(doc.get());
  const auto roots = query.find(top, "/VAST");
  if (roots.empty()) {
    return 0;
  }
  query.attribute(roots.front(), "version");
  const auto ads = query.find(top, "/VAST/Ad");
  query.attribute(ads.front(), "id");
  query.find(top, "/VAST/Ad/Wrapper");
  const auto inlines = query.find(top, "/VAST/Ad/InLine");
  query.text(query.find(inlines, "Impression"));
  const OwnText version(xmlGetProp(roots.front(), asXml("version")));
  if (*version == '4') {
    readVersion4Parts(query, inlines);
  }
  const auto linears = query.find(inlines, "Creatives/Creative/Linear");
  query.attribute(linears.front(), "skipoffset");
  query.find(inlines, "Creatives/Creative/Linear");
  for (xmlNode* file : query.find(linears, "MediaFiles/MediaFile")) {
    query.attribute(file, "type");
    break;  // the first of these documents can be played
  }
  readLinear(query, linears);
  readExtensions(query, inlines);
  for (xmlNode* companion : query.find(inlines, "Creatives/Creative/CompanionAds/Companion")) {
    readCompanion(query, companion);
  }
  return query.texts();
}

}  // namespace tamzo::bench
