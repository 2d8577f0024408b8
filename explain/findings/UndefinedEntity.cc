#include "explain/Rules.h"
#include "explain/Words.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findUndefinedEntity(const Chain& chain, Findings& findings) {
  if (chain.errorCode() != kNotXml || chain.refusal().fault.kind != FaultKind::undefinedEntity) {
    return;
  }
  const Fault& fault = chain.refusal().fault;
  findings.add(chain.last().number)
      .atByte(fault.at)
      .say("The entity \"&" + fault.name + ";\" is HTML's or nobody's: XML does not know it.",
           "Ad server: write the character itself, or its number, as in \"&#160;\".")
      .with("entity", fault.name);
}

}  // namespace tamzo::explain
