#include <fmt/format.h>

#include "explain/Rules.h"

namespace tamzo::explain {

void findNothingToPlay(const Chain& chain, Findings& findings) {
  if (chain.verdict() != Verdict::nothingToPlay) {
    return;
  }
  const SeenHop& hop = chain.last();
  Draft& draft = findings.add(hop.number);
  if (chain.ad().isImaEnabled()) {
    draft
        .say(
            "The vendor's settings say that another component plays this ad: tags are not "
            "followed, and nothing is left to play here.",
            "Ad server: leave ImaTracking out if this player is meant to play the ad.")
        .with("why", "other-component-plays");
  } else if (hop.kind == AdKind::wrapper) {
    draft
        .say(fmt::format("{} Wrappers and no InLine: nothing to play.", chain.hops().size()),
             "Whoever sets up the chain: use at most three Wrappers before the InLine.")
        .with("why", "chain-too-long");
  } else {
    draft
        .say("The InLine brings no media file with a URL: nothing to play.",
             "Ad server: write the URL of the video into MediaFile.")
        .with("why", "no-media");
  }
}

}  // namespace tamzo::explain
