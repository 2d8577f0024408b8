// The markup that Moat is given, and how it is logged.

#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "vast/measurement/MoatLog.h"

namespace tamzo {
namespace {

// Up to here the markup is logged whenever it grows.
constexpr std::size_t kShortMarkup = 16384;

}  // namespace

void MoatLog::noteGrowth(const MutableText& markup) {
  const std::size_t length = markup.view().size();
  isBehind_ = length > kShortMarkup && length / 2 < logged_;
  if (!isBehind_) {
    write(markup);
  }
}

void MoatLog::catchUp(const MutableText& markup) {
  if (isBehind_) {
    write(markup);
  }
}

void MoatLog::write(const MutableText& markup) {
  logged_ = markup.view().size();
  isBehind_ = false;
  TAMZO_LOG("%@", markup.asText());
}

void TamzoVastAd::updateMoatAdVerification(const NodeList& adVerifications) {
  MoatLog log;
  appendMoatMarkup(adVerifications, log);
  log.catchUp(moatViewImpressionStr());
}

void TamzoVastAd::appendMoatMarkup(const NodeList& adVerifications, MoatLog& log) {
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
    log.noteGrowth(markup);
  }
  if (!markup.view().empty()) {
    setMoatVastIds(markup.asText());
  }
}

}  // namespace tamzo
