#include "explain/Rules.h"
#include "explain/Words.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findDuplicateAttribute(const Chain& chain, Findings& findings) {
  if (chain.errorCode() != kNotXml || chain.refusal().fault.kind != FaultKind::duplicateAttribute) {
    return;
  }
  const Fault& fault = chain.refusal().fault;
  findings.add(chain.last().number)
      .atByte(fault.at)
      .say("An element has the attribute " + quoted(fault.name) + " twice.",
           "Ad server: write each attribute of an element once.")
      .with("attribute", fault.name);
}

}  // namespace tamzo::explain
