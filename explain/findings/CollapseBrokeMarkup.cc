#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

// Whatever the clean-up broke and has not been found before.
void findCollapseBrokeMarkup(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  const bool isChanged = Chain::isCleaned(hop) && chain.cleanUp().changes();
  if (chain.errorCode() != kNotXml || !isChanged || !chain.refusal().isXml) {
    return;
  }
  std::string advice =
      "The response is well-formed, other players take it. Ad server: drop the default xmlns, or "
      "write one blank and another attribute behind it.";
  if (chain.wouldPlayWithoutNamespace()) {
    advice += " Without it this ad would end with 0.";
  }
  findings.add(hop.number)
      .atByte(chain.cleanUp().findFault().at)
      .say("The text is no XML any more once xmlns= is taken away up to the next white space.",
           advice);
}

}  // namespace tamzo::explain
