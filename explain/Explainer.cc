#include "explain/Explainer.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

#include "base/WhiteSpace.h"
#include "explain/Chain.h"
#include "explain/MacroFilling.h"
#include "explain/MediaReports.h"
#include "explain/Places.h"
#include "explain/Rules.h"
#include "explain/Words.h"
#include "tamzo/sdk/TamzoState.h"

namespace tamzo::explain {
namespace {

std::size_t companionsOf(const TamzoVastAd& ad) {
  std::size_t count = 0;
  if (ad.companionAds() != nullptr) {
    for (const auto& document : *ad.companionAds()) {
      count += document->companions().size();
    }
  }
  return count;
}

std::size_t verificationsOf(const TamzoVastAd& ad) {
  return ad.measurementProviderList() == nullptr ? 0 : ad.measurementProviderList()->size();
}

FetchResult withoutBody(const FetchResult& fetch) {
  FetchResult copy;
  copy.failure = fetch.failure;
  copy.cause = fetch.cause;
  copy.status = fetch.status;
  copy.finalUrl = fetch.finalUrl;
  copy.redirects = fetch.redirects;
  copy.redirectStatuses = fetch.redirectStatuses;
  copy.bytes = fetch.bytes;
  copy.contentType = fetch.contentType;
  copy.milliseconds = fetch.milliseconds;
  copy.reusedConnection = fetch.reusedConnection;
  return copy;
}

Text trimmed(const Text& text) { return text.isNil() ? text : text.part(trimWhiteSpace(text)); }

// The text of the first such child, trimmed; nil where there is none.
Text trimmedChild(const DDXMLElement& element, const XPath& path) {
  return trimmed(element.firstNodeForXPath(path).stringValue());
}

void countElements(const SeenHop& hop, HopReport& report) {
  report.ads = hop.ads.size();
  for (const DDXMLElement& ad : hop.ads) {
    report.creatives += ad.nodesForXPath("Wrapper/Creatives/Creative").size() +
                        ad.nodesForXPath("InLine/Creatives/Creative").size();
    report.linears += ad.nodesForXPath("Wrapper/Creatives/Creative/Linear").size() +
                      ad.nodesForXPath("InLine/Creatives/Creative/Linear").size();
  }
  report.icons = hop.linears.nodesUnderFirst("Icons/Icon").size();
  report.errorUrls = hop.followed.nodesForXPath("Error").size();
  if (hop.parsed) {
    report.errorUrls += hop.parsed->nodesForXPath("/VAST/Error").size();
  }
}

void countTrackers(const SeenHop& hop, const TrackerTally& trackers, HopReport& report) {
  for (const BroughtTrackers& brought : hop.brought) {
    const bool isImpression = trackers.events()[brought.event].name.view() == "Impression";
    (isImpression ? report.impressions : report.trackers) += brought.count;
  }
}

HopReport reportOf(const SeenHop& hop, const TrackerTally& trackers) {
  HopReport report;
  report.number = hop.number;
  report.source = hop.source;
  report.tag = hop.tag;
  report.url = hop.url;
  if (!hop.tag.isNil()) {
    const Text& filled = hop.source == HopSource::tag ? hop.document : hop.url;
    MacroFilling filling = compareFilling(hop.tag, filled);
    report.macros = std::move(filling.filled);
    report.unfilled = std::move(filling.unfilled);
  }
  report.fetch = hop.fetch;
  report.document = hop.document;
  report.version = hop.version;
  report.kind = hop.kind;
  report.adSystem = trimmedChild(hop.followed, "AdSystem");
  report.adTitle = trimmedChild(hop.followed, "AdTitle");
  const DDXMLElement ad = hop.followedAd || hop.ads.empty() ? hop.followedAd : hop.ads.at(0);
  report.adId = trimmed(ad.attributeValue("id"));
  report.companions = hop.companions;
  report.verifications = hop.verifications;
  countElements(hop, report);
  countTrackers(hop, trackers, report);
  return report;
}

// In which hop, and whose that is.
std::string whereIs(const Finding& finding, const Chain& chain) {
  std::string where;
  if (finding.hop) {
    const SeenHop& hop = chain.hops()[static_cast<std::size_t>(*finding.hop) - 1];
    where = fmt::format("hop {}", *finding.hop);
    if (const auto host = hostOf(hop.url); !host.empty()) {
      where += ", " + shortened(host, 100);
    }
    if (const Text system = trimmedChild(hop.followed, "AdSystem"); system.hasCharacters()) {
      where += ", AdSystem " + quoted(system);
    }
  }
  if (finding.place) {
    where += fmt::format(", line {}, column {}", finding.place->line, finding.place->column);
  }
  return where;
}

std::string sentenceOfAd(const Chain& chain) {
  const TamzoVastAd& ad = chain.ad();
  const std::size_t wrappers = chain.hops().size() - 1;
  const std::size_t files = ad.mediaFiles() == nullptr ? 0 : ad.mediaFiles()->size();
  std::string sentence = "The ad can be played: " + counted(files, "media file", "media files");
  if (ad.jsVPaidPresent()) {
    sentence += ", a JavaScript VPAID unit";
  }
  if (ad.duration() != nullptr) {
    sentence += fmt::format(", {} s", ad.duration()->durationInSeconds());
  }
  if (wrappers > 0) {
    sentence += ", behind " + counted(wrappers, "Wrapper", "Wrappers");
  }
  return sentence + ".";
}

std::string sentenceOf(const Explanation& explanation, const Chain& chain) {
  const Finding* error = errorOf(explanation);
  if (error == nullptr) {
    return sentenceOfAd(chain);
  }
  std::string sentence = error->message;
  const std::string where = whereIs(*error, chain);
  if (!where.empty()) {
    if (sentence.ends_with('.')) {
      sentence.pop_back();
    }
    sentence += " (" + where + ").";
  }
  return sentence;
}

// A list that the host fails to give blocks nothing here; where the parse needed it, that failed.
Text blockedCategories() {
  try {
    return TamzoState::getBlockedAdCategories();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace

void Explainer::onHop(const Hop& hop) {
  try {
    note(hop);
  } catch (...) {
    failure_ = std::current_exception();
  }
}

void Explainer::note(const Hop& hop) {
  SeenHop seen;
  seen.number = hop.number;
  seen.source = hop.source;
  seen.tag = hop.tag;
  seen.url = hop.url;
  if (hop.fetch != nullptr) {
    seen.fetch = withoutBody(*hop.fetch);
  }
  seen.document = hop.document;
  if (hop.parsed != nullptr) {
    seen.parsed = *hop.parsed;
  }
  seen.blockedCategories = blockedCategories();
  if (hop.record.trackers() != nullptr) {
    seen.brought = trackers_.note(*hop.record.trackers(), hop.number);
  }
  seen.companions = companionsOf(hop.record) - std::exchange(companions_, companionsOf(hop.record));
  seen.verifications =
      verificationsOf(hop.record) - std::exchange(verifications_, verificationsOf(hop.record));
  hops_.push_back(std::move(seen));
  exception_ = hop.exception;
}

Explanation Explainer::explain(const TamzoVastAd& ad) {
  if (failure_ != nullptr) {
    std::rethrow_exception(failure_);
  }
  if (hops_.empty()) {
    hops_.emplace_back();
  }
  for (SeenHop& hop : hops_) {
    inspect(hop);
  }
  const Chain chain(ad, std::move(hops_), std::move(trackers_), exception_);
  Explanation explanation;
  explanation.verdict = chain.verdict();
  explanation.errorCode = ad.errorCode();
  explanation.findings = findAll(chain);
  explanation.sentence = sentenceOf(explanation, chain);
  for (const SeenHop& hop : chain.hops()) {
    explanation.hops.push_back(reportOf(hop, chain.trackers()));
  }
  for (const TrackerTally::Event& event : chain.trackers().events()) {
    explanation.trackerHops.push_back({event.name, event.hops});
  }
  explanation.mediaFiles = reportMediaFiles(chain);
  return explanation;
}

}  // namespace tamzo::explain
