#include "explain/Rules.h"

namespace tamzo::explain {
namespace {

bool hasInLineBefore(const SeenHop& hop) {
  for (std::size_t i = 0; i < hop.followedIndex; ++i) {
    if (hop.ads.at(i).firstNodeForXPath("InLine")) {
      return true;
    }
  }
  return false;
}

}  // namespace

void findSecondAdIsFollowed(const Chain& chain, Findings& findings) {
  for (const SeenHop& hop : chain.hops()) {
    if (hop.major != 0 && hop.kind == AdKind::wrapper && hasInLineBefore(hop)) {
      findings.add(hop.number)
          .at(hop.followedAd)
          .say(
              "A Wrapper in a later Ad is followed, and the InLine in an Ad before it is not read.",
              "Ad server: send one Ad, or put the one that is meant into a response of its own.");
    }
  }
}

}  // namespace tamzo::explain
