#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findChainOfFive(const Chain& chain, Findings& findings) {
  if (chain.errorCode() == kWrapperLimit) {
    findings.add(chain.last().number)
        .say("The chain ends on its fifth document, which counts as too long.",
             "Whoever sets up the chain: use at most three Wrappers before the InLine.");
  }
}

}  // namespace tamzo::explain
