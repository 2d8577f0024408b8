#include "explain/Rules.h"
#include "explain/Words.h"

namespace tamzo::explain {

void findDuplicateAttribute(const Chain& chain, Findings& findings) {
  const Fault* fault = chain.faultOf(FaultKind::duplicateAttribute);
  if (fault == nullptr) {
    return;
  }
  findings.add(chain.last().number)
      .atByte(fault->at)
      .say("An element has the attribute " + quoted(fault->name) + " twice.",
           "Ad server: write each attribute of an element once.")
      .with("attribute", fault->name);
}

}  // namespace tamzo::explain
