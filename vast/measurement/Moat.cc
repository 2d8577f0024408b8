#include "tamzo/vast/TamzoVastAd.h"

#include "tamzo/sdk/TamzoLogger.h"

namespace tamzo {
namespace {

// The whole markup is logged each time that it grows, so it is logged only while it is short.
constexpr std::size_t kMaxLoggedMarkup = 16384;

}  // namespace

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

}  // namespace tamzo
