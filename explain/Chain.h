#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "explain/CleanUp.h"
#include "explain/FirstFault.h"
#include "explain/SeenHop.h"
#include "explain/TrackerTally.h"

namespace tamzo::explain {

/// How the parser refuses the text that the last hop received.
struct Refusal {
  bool isXml = false;    ///< it does not: only the cleaned text is refused
  std::string parser;    ///< libxml2's own words
  std::string bound;     ///< the parser's bound that it went beyond; "": none
  Fault fault;           ///< the first one, where there is no bound
  std::size_t line = 0;  ///< where libxml2 stopped; 0 where it does not say
};

/// A parse that has ended: what findings are looked for in.
class Chain {
 public:
  /// `what` is the text of the exception that ended it; nil where none did, or nobody knows it.
  Chain(const TamzoVastAd& ad, std::vector<SeenHop> hops, TrackerTally trackers, Text what);

  const TamzoVastAd& ad() const noexcept { return ad_; }
  Verdict verdict() const noexcept { return verdict_; }
  std::int32_t errorCode() const noexcept { return ad_.errorCode(); }
  /// At least one.
  const std::vector<SeenHop>& hops() const noexcept { return hops_; }
  const SeenHop& last() const noexcept { return hops_.back(); }
  const TrackerTally& trackers() const noexcept { return trackers_; }
  const Text& what() const noexcept { return what_; }

  /// True for the text that goes through the clean-up: a response that was given as text.
  static bool isCleaned(const SeenHop& hop) noexcept {
    return hop.number == 1 && hop.source == HopSource::input;
  }
  /// Of the first hop where isCleaned() is true; of an empty text otherwise.
  const CleanUp& cleanUp() const;
  /// The text that the parser read.
  Text textRead(const SeenHop& hop) const;

  /// Where the "<" of each element of that hop stands in the document as it was received; npos for
  /// a nil element, for one that an entity brought, and for all of a document that was not parsed.
  std::vector<std::size_t> startTagsOf(const SeenHop& hop,
                                       const std::vector<DDXMLElement>& elements) const;

  /// Of the last hop, whose text as it was read is no XML.
  const Refusal& refusal() const;
  /// The fault for which the last hop's text was refused, where it is of that kind; null otherwise.
  const Fault* faultOf(FaultKind kind) const;
  /// True when the last hop's text was XML before the clean-up, and is none any more.
  bool isBrokenByCleanUp() const;

  /// True when a parse without the default namespaces of the response ends with an ad that plays.
  /// Asks no server, and nothing of the app's state is changed.
  bool wouldPlayWithoutNamespace() const;

  /// What a Wrapper's tag was filled to; nil for what is no Wrapper.
  Text filledTagOf(const SeenHop& wrapper) const;

 private:
  const TamzoVastAd& ad_;
  std::vector<SeenHop> hops_;
  TrackerTally trackers_;
  Text what_;
  Verdict verdict_;
  mutable std::optional<CleanUp> cleanUp_;
  mutable std::optional<Refusal> refusal_;
};

}  // namespace tamzo::explain
