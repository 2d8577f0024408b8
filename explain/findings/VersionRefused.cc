#include "explain/Rules.h"
#include "explain/Words.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findVersionRefused(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() == kBadVersion && hop.version.hasCharacters()) {
    findings.add(hop.number)
        .at(hop.parsed->rootElement())
        .say("The version is " + quoted(hop.version) + ": only 2, 3 and 4 are read.",
             "Ad server: answer with VAST 2, 3 or 4.")
        .with("version", hop.version);
  }
}

}  // namespace tamzo::explain
