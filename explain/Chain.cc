#include "explain/Chain.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "explain/Categories.h"
#include "explain/Places.h"
#include "tamzo/vast/ErrorCodes.h"
#include "xml/StartTags.h"
#include "xml/XmlParser.h"

namespace tamzo::explain {
namespace {

Verdict verdictOf(const TamzoVastAd& ad) {
  if (ad.errorCode() != kNoError) {
    return Verdict::failed;
  }
  const bool hasMedia = ad.mediaFiles() != nullptr &&
                        std::any_of(ad.mediaFiles()->begin(), ad.mediaFiles()->end(),
                                    [](const auto& file) { return file->url().hasCharacters(); });
  return hasMedia || ad.jsVPaidPresent() ? Verdict::playable : Verdict::nothingToPlay;
}

// Takes "line 3: " off what the parser says.
std::size_t takeLine(std::string& message) {
  constexpr std::string_view kLine = "line ";
  std::size_t line = 0;
  if (!message.starts_with(kLine)) {
    return 0;
  }
  const char* begin = message.data() + kLine.size();
  const auto [end, error] = std::from_chars(begin, message.data() + message.size(), line);
  const std::size_t past = static_cast<std::size_t>(end - message.data());
  if (error == std::errc() && message.compare(past, 2, ": ") == 0) {
    message.erase(0, past + 2);
    return line;
  }
  return 0;
}

// Declarations of entities and names of instructions are not looked into: what is wrong with those
// the parser tells by its line. Where a text is cut off or does not begin as XML, what it says is
// not the reason.
bool isPastStop(const Text& text, const Refusal& refusal) {
  const FaultKind kind = refusal.fault.kind;
  const bool isCompared = kind == FaultKind::unescapedAmpersand ||
                          kind == FaultKind::undefinedEntity ||
                          kind == FaultKind::duplicateAttribute || kind == FaultKind::other;
  return isCompared && refusal.line > 0 && linesOf(text, {refusal.fault.at}).front() > refusal.line;
}

Refusal refusalOf(const Text& text) {
  Refusal refusal;
  XmlParser parser;
  if (parser.parse(text) != nullptr) {
    refusal.isXml = true;
    return refusal;
  }
  refusal.bound = parser.bound();
  refusal.parser = parser.error().message;
  refusal.line = takeLine(refusal.parser);
  if (refusal.bound.empty()) {
    refusal.fault = findFirstFault(text);
    if (isPastStop(text, refusal)) {
      refusal.fault = {};
    }
  }
  return refusal;
}

bool isAnyBlocked(const SeenHop& hop) {
  const BlockedEntries blocked(hop.blockedCategories);
  for (const DDXMLElement& category : comparedCategories(hop)) {
    if (blocked.placeOf(category.stringValue()) != 0) {
      return true;
    }
  }
  return false;
}

bool hasMedia(const SeenHop& hop) {
  for (const DDXMLElement& file : hop.linears.nodesUnderFirst("MediaFiles/MediaFile")) {
    if (mediaUseOf(file) == MediaUse::javaScriptVpaid ||
        TamzoMediaFile(file).url().hasCharacters()) {
      return true;
    }
  }
  return false;
}

}  // namespace

Chain::Chain(const TamzoVastAd& ad, std::vector<SeenHop> hops, TrackerTally trackers, Text what)
    : ad_(ad),
      hops_(std::move(hops)),
      trackers_(std::move(trackers)),
      what_(std::move(what)),
      verdict_(verdictOf(ad)) {}

const CleanUp& Chain::cleanUp() const {
  if (!cleanUp_) {
    cleanUp_.emplace(isCleaned(hops_.front()) ? hops_.front().document : Text::literal(""));
  }
  return *cleanUp_;
}

Text Chain::textRead(const SeenHop& hop) const {
  return isCleaned(hop) ? cleanUp().cleaned() : hop.document;
}

std::vector<std::size_t> Chain::startTagsOf(const SeenHop& hop,
                                            const std::vector<DDXMLElement>& elements) const {
  if (!hop.parsed) {
    return std::vector<std::size_t>(elements.size(), std::string_view::npos);
  }
  std::vector<std::size_t> places = findStartTags(textRead(hop), *hop.parsed, elements);
  if (isCleaned(hop)) {
    for (std::size_t& place : places) {
      place = cleanUp().toReceived(place);
    }
  }
  return places;
}

const Refusal& Chain::refusal() const {
  if (!refusal_) {
    refusal_ = refusalOf(last().document);
  }
  return *refusal_;
}

const Fault* Chain::faultOf(FaultKind kind) const {
  return errorCode() == kNotXml && refusal().fault.kind == kind ? &refusal().fault : nullptr;
}

bool Chain::isBrokenByCleanUp() const {
  return errorCode() == kNotXml && isCleaned(last()) && cleanUp().changes() && refusal().isXml;
}

bool Chain::wouldPlayWithoutNamespace() const {
  SeenHop hop;
  const CleanUp mended{Text(cleanUp().withoutDefaultNamespaces())};
  const auto document = DDXMLDocument::initWithXMLString(mended.cleaned(), 0);
  if (document == nullptr) {
    return false;
  }
  hop.parsed = *document;
  hop.blockedCategories = hops_.front().blockedCategories;
  inspect(hop);
  return hop.isRead() && hop.kind == AdKind::inLine && !hop.linears.empty() &&
         isUsable(hop.linears.at(0)) && hasMedia(hop) && !findTrackingWithoutEvent(hop) &&
         !isAnyBlocked(hop);
}

Text Chain::filledTagOf(const SeenHop& wrapper) const {
  if (wrapper.kind != AdKind::wrapper || wrapper.major == 0) {
    return {};
  }
  const auto next = static_cast<std::size_t>(wrapper.number);
  if (next >= hops_.size()) {
    return ad_.vastTagURI();
  }
  return hops_[next].source == HopSource::tag ? hops_[next].document : hops_[next].url;
}

}  // namespace tamzo::explain
