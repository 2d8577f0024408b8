// Measurement and ad policy: viewability, verification, Moat, the vendor's own tracking events,
// expiry, categories and the universal ad id.

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>

#include "sdk/TamzoLogger.h"
#include "sdk/TamzoState.h"
#include "sdk/TextConversions.h"
#include "vast/TamzoVastAd.h"
#include "vast/TrackerEvents.h"

namespace tamzo {
namespace {

// The whole markup is logged each time that it grows, so it is logged only while it is short.
constexpr std::size_t kMaxLoggedMarkup = 16384;

void appendTrackers(const TrackerList& events, const NodeList& elements) {
  for (const DDXMLElement& element : elements) {
    appendTracker(*events, element);
  }
}

// The pieces between the commas, as they stand, empty ones included.
std::unordered_set<std::string_view> splitAtCommas(std::string_view text) {
  std::unordered_set<std::string_view> parts;
  std::size_t begin = 0;
  for (std::size_t comma = text.find(','); comma != std::string_view::npos;
       comma = text.find(',', begin)) {
    parts.insert(text.substr(begin, comma - begin));
    begin = comma + 1;
  }
  parts.insert(text.substr(begin));
  return parts;
}

// Only for a log line, in which every category is followed by a comma.
Text joinCategories(const NodeList& categories) {
  std::string joined;
  for (const DDXMLElement& category : categories) {
    joined += category.stringValue().view();
    joined += ',';
  }
  return Text(std::move(joined));
}

}  // namespace

// ---- Viewability and verification ------------------------------------------------------------

void TamzoVastAd::updateViewableImpressions(const NodeList& nodes) {
  const NodeList impressions = nodes.nodesUnderFirst("ViewableImpression");
  if (impressions.empty()) {
    return;
  }
  const auto viewable = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  const auto notViewable = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  const auto undetermined = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  for (const DDXMLElement& impression : impressions) {
    appendTrackers(viewable, impression.nodesForXPath("Viewable"));
    appendTrackers(notViewable, impression.nodesForXPath("NotViewable"));
    appendTrackers(undetermined, impression.nodesForXPath("ViewUndetermined"));
  }
  trackerMap().set(Text::literal("Viewable"), viewable);
  trackerMap().set(Text::literal("NotViewable"), notViewable);
  trackerMap().set(Text::literal("ViewUndetermined"), undetermined);
}

void TamzoVastAd::updateAdVerification(const NodeList& nodes) {
  const auto viewable = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  for (const DDXMLElement& verification : nodes.nodesUnderFirst("AdVerifications/Verification")) {
    appendTrackers(viewable, verification.nodesForXPath("ViewableImpression"));
  }
  if (!viewable->empty()) {
    trackerMap().set(Text::literal("AdVerificationViewable"), viewable);
  }
}

void TamzoVastAd::updateOMVerificationResources(const NodeList& nodes, float vastVerrsion) {
  constexpr float kFirstWithOwnVerifications = 4.1F;
  const NodeList adVerifications =
      vastVerrsion < kFirstWithOwnVerifications
          ? nodes.nodesUnderFirst("Extensions/Extension/AdVerifications")
          : nodes.nodesUnderFirst("AdVerifications");
  if (measurementProviderList() == nullptr) {
    setMeasurementProviderList(makeList<std::shared_ptr<TamzoMeasurementProviderModel>>());
  }
  for (const DDXMLElement& verification : adVerifications.nodesUnderFirst("Verification")) {
    const auto provider = TamzoMeasurementProviderModel::init();
    measurementProviderList()->push_back(
        provider->createMeasurementProviderFromXML(NodeList::of(verification)));
  }
}

void TamzoVastAd::updateMoatAdVerification(const NodeList& adVerifications) {
  if (adVerifications.empty()) {
    return;
  }
  MutableText markup = moatViewImpressionStr();
  for (const DDXMLElement& element : adVerifications) {
    const NodeList impressions = element.nodesForXPath("Verification/ViewableImpression");
    if (impressions.empty()) {
      continue;
    }
    for (const DDXMLElement& impression : impressions) {
      markup.appendString(impression.XMLString());
    }
    if (markup.view().size() <= kMaxLoggedMarkup) {
      TAMZO_LOG("%@", markup.asText());
    }
  }
  if (!markup.view().empty()) {
    setMoatVastIds(markup.asText());
  }
}

// ---- The vendor's own tracking events --------------------------------------------------------

void TamzoVastAd::updateExtraTrackingEvent(const NodeList& nodes) {
  TAMZO_LOG("edc");
  if (nodes.isNil()) {
    return;
  }
  updateExtraTrackingEvent_REC(
      nodes.at(0).nodesForXPath("Extensions/Extension/Tamzo/ExtraTrackingEvents/Tracking"));
}

void TamzoVastAd::updateExtraTrackingEvent_REC(const NodeList& trackingNodes) {
  for (const DDXMLElement& tracking : trackingNodes) {
    const TrackerList events = trackerMap().listFor(tracking.attributeValue("event"));
    appendTracker(*events, tracking);
  }
}

// ---- Expiry, categories, universal ad id -----------------------------------------------------

void TamzoVastAd::updateExpires(const NodeList& nodes) {
  if (nodes.empty()) {
    return;
  }
  const Text value = getSingleValueFromNode(nodes, "Expires");
  TAMZO_LOG("Vast Ad Expires %@", value);
  if (value.hasCharacters()) {
    setExpires(doubleValue(value));
  }
}

void TamzoVastAd::updateCategory(const NodeList& nodes) {
  const NodeList categories = getArrayFromNode(nodes, "Category");
  if (categories.empty()) {
    return;
  }
  if (categoryArray() == nullptr) {
    setCategoryArray(makeList<Text>());
  }
  categoryArray()->reserve(categoryArray()->size() + categories.size());
  for (const DDXMLElement& category : categories) {
    categoryArray()->push_back(category.stringValue());
  }
  TAMZO_LOG("[Blocked ad category: %@] and [Vast Ad Category : %@]",
            TamzoState::getBlockedAdCategories(), joinCategories(categories));
  if (isCategoryBlocked(categoryArray())) {
    setErrorCode(kCategoryBlocked);
    TAMZO_LOG("Vast Ad Category is blocked");
  }
}

bool TamzoVastAd::isCategoryBlocked(const List<Text>& categories) {
  const Text blocked = TamzoState::getBlockedAdCategories();
  if (blocked.isNil() || categories == nullptr) {
    return false;
  }
  const auto parts = splitAtCommas(blocked);
  return std::any_of(categories->begin(), categories->end(), [&parts](const Text& category) {
    return !category.isNil() && parts.contains(category.view());
  });
}

void TamzoVastAd::updateUniversalAdIdInfo(const NodeList& nodes) {
  const NodeList ids = getArrayFromNode(nodes, "UniversalAdId");
  if (ids.empty()) {
    TAMZO_LOG("Universal AdId not available");
    return;
  }
  const DDXMLElement id = ids.at(0);
  if (const Text registry = id.attributeValue("idRegistry"); !registry.isNil()) {
    setUnivversalIDRegistry(registry);
  }
  if (const Text value = id.attributeValue("idValue"); !value.isNil()) {
    setUniversalIDValue(value);
  }
  TAMZO_LOG("Universal AdId Info idRegistryNode = %@ idValueNode = %@", univversalIDRegistry(),
            universalIDValue());
}

void TamzoVastAd::updateSurvey(const NodeList&) {}

}  // namespace tamzo
