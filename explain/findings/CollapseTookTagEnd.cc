#include "explain/Rules.h"

namespace tamzo::explain {

void findCollapseTookTagEnd(const Chain& chain, Findings& findings) {
  if (!chain.isBrokenByCleanUp()) {
    return;
  }
  const CollapseFault fault = chain.cleanUp().findFault();
  if (!fault.tookTagEnd) {
    return;
  }
  std::string advice =
      "The response is well-formed, other players take it. Ad server: drop the default xmlns, or "
      "put another attribute behind it.";
  if (chain.wouldPlayWithoutNamespace()) {
    advice += " Without it this ad would end with 0.";
  }
  findings.add(chain.last().number)
      .atByte(fault.at)
      .say("A tag loses its \">\" when xmlns= is taken away.", advice)
      .with("read", fault.read);
}

}  // namespace tamzo::explain
