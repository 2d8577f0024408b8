#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findBlankBeforeDeclaration(const Chain& chain, Findings& findings) {
  if (chain.errorCode() != kNotXml ||
      chain.refusal().fault.kind != FaultKind::blankBeforeDeclaration) {
    return;
  }
  const Fault& fault = chain.refusal().fault;
  findings.add(chain.last().number)
      .atByte(fault.at)
      .say("Something stands before the XML declaration, which must come first.",
           "Ad server: send no white space or other text before \"<?xml\", or leave the "
           "declaration out.");
}

}  // namespace tamzo::explain
