#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findVast1(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() == kBadVersion && hop.rootName.view() == "VideoAdServingTemplate") {
    findings.add(hop.number)
        .at(hop.parsed->rootElement())
        .say("The document is VAST 1, which is not read.",
             "Ad server: answer with VAST 2, 3 or 4.");
  }
}

}  // namespace tamzo::explain
