#include "explain/Rules.h"
#include "explain/Words.h"

namespace tamzo::explain {

void findUndefinedEntity(const Chain& chain, Findings& findings) {
  const Fault* fault = chain.faultOf(FaultKind::undefinedEntity);
  if (fault == nullptr) {
    return;
  }
  findings.add(chain.last().number)
      .atByte(fault->at)
      .say("The entity \"&" + fault->name + ";\" is HTML's or nobody's: XML does not know it.",
           "Ad server: write the character itself, or its number, as in \"&#160;\".")
      .with("entity", fault->name);
}

}  // namespace tamzo::explain
