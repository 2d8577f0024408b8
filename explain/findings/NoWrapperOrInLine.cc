#include "explain/Names.h"
#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findNoWrapperOrInLine(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() != kNoWrapperOrInLine || hop.ads.empty()) {
    return;
  }
  Names children;
  for (const DDXMLElement& ad : hop.ads) {
    children.addChildrenOf(ad);
  }
  findings.add(hop.number)
      .at(hop.ads.at(0))
      .say("The Ad holds neither a Wrapper nor an InLine; it holds: " + children.inWords() + ".",
           "Ad server: put the ad into an InLine, or its tag into a Wrapper, written just so.")
      .with("children", children.list());
}

}  // namespace tamzo::explain
