#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "explain/Explanation.h"
#include "explain/TrackerTally.h"
#include "tamzo/vast/ParseOptions.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "vast/linear/LinearSelection.h"

namespace tamzo::explain {

/// A hop as the observer was told of it, and what its document holds.
struct SeenHop {
  std::int32_t number = 1;
  HopSource source = HopSource::input;
  Text tag;
  Text url;
  std::optional<FetchResult> fetch;
  Text document;                        ///< as received
  std::optional<DDXMLDocument> parsed;  ///< as the parser read it
  Text blockedCategories;               ///< of the host, at that time
  std::vector<BroughtTrackers> brought;
  std::size_t companions = 0;
  std::size_t verifications = 0;

  // What the document holds, as far as it could be parsed.
  Text rootName;
  Text version;            ///< as the parser found it
  std::int32_t major = 0;  ///< 2, 3 or 4; 0 for a version that is not read
  NodeList ads;
  AdKind kind = AdKind::none;
  DDXMLElement followed;    ///< the Wrapper or InLine that is read
  DDXMLElement followedAd;  ///< the Ad around it
  std::size_t followedIndex = 0;
  NodeList linears;  ///< of `followed`

  /// True when updaters were run over the document.
  bool isRead() const noexcept { return major != 0 && kind != AdKind::none; }
};

/// Fills in what the document holds.
void inspect(SeenHop& hop);

/// The first Tracking element without an event name that the parser meets in the document; nil when
/// there is none.
DDXMLElement findTrackingWithoutEvent(const SeenHop& hop);

/// True when the parser could play that Linear.
bool isUsable(const DDXMLElement& linear);

/// The vendor blocks of the document, of which the parser reads the first one in each Extension.
std::vector<DDXMLElement> vendorBlocksOf(const SeenHop& hop);

}  // namespace tamzo::explain
