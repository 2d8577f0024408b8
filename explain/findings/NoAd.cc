#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findNoAd(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() == kNoAd && hop.parsed) {
    findings.add(hop.number)
        .at(hop.parsed->rootElement())
        .say("The document holds no Ad: the ad server has none to give.",
             "Ad operations: look at targeting, budget and dates of the line items.");
  }
}

}  // namespace tamzo::explain
