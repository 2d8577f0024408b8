#include "explain/Rules.h"
#include "explain/Words.h"

namespace tamzo::explain {

void findAdsPassedOver(const Chain& chain, Findings& findings) {
  for (const SeenHop& hop : chain.hops()) {
    if (!hop.isRead() || hop.ads.size() < 2) {
      continue;
    }
    const std::size_t count = hop.ads.size() - 1;
    findings.add(hop.number)
        .at(hop.ads.at(hop.followedIndex == 0 ? 1 : 0))
        .say(counted(count, "Ad of the document is", "Ads of the document are") + " not read.",
             "Ad server: send one Ad in a response; of several one alone is played.")
        .with("count", count);
  }
}

}  // namespace tamzo::explain
