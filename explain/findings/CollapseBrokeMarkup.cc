#include "explain/Rules.h"

namespace tamzo::explain {

// Whatever the clean-up broke and has not been found before.
void findCollapseBrokeMarkup(const Chain& chain, Findings& findings) {
  if (!chain.isBrokenByCleanUp()) {
    return;
  }
  std::string advice =
      "The response is well-formed, other players take it. Ad server: drop the default xmlns, or "
      "write one blank and another attribute behind it.";
  if (chain.wouldPlayWithoutNamespace()) {
    advice += " Without it this ad would end with 0.";
  }
  findings.add(chain.last().number)
      .atByte(chain.cleanUp().findFault().at)
      .say("The text is no XML any more once xmlns= is taken away up to the next white space.",
           advice);
}

}  // namespace tamzo::explain
