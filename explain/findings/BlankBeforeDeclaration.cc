#include "explain/Rules.h"

namespace tamzo::explain {

void findBlankBeforeDeclaration(const Chain& chain, Findings& findings) {
  const Fault* fault = chain.faultOf(FaultKind::blankBeforeDeclaration);
  if (fault == nullptr) {
    return;
  }
  findings.add(chain.last().number)
      .atByte(fault->at)
      .say("Something stands before the XML declaration, which must come first.",
           "Ad server: send no white space or other text before \"<?xml\", or leave the "
           "declaration out.");
}

}  // namespace tamzo::explain
