#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findCollapseTookVersion(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() != kBadVersion || !Chain::isCleaned(hop) || hop.version.hasCharacters()) {
    return;
  }
  if (const auto at = chain.cleanUp().findVersionTaken()) {
    findings.add(hop.number)
        .atByte(*at)
        .say("The root loses its version when xmlns= is taken away up to the next white space.",
             "The response is in order, other players take it. Ad server: write version before "
             "xmlns, or drop the xmlns.");
  }
}

}  // namespace tamzo::explain
