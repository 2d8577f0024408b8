#include "explain/Rules.h"
#include "explain/Words.h"

namespace tamzo::explain {

void findCutOff(const Chain& chain, Findings& findings) {
  const Fault* fault = chain.faultOf(FaultKind::cutOff);
  if (fault == nullptr) {
    return;
  }
  findings.add(chain.last().number)
      .atByte(fault->at)
      .say(fault->open.empty() ? std::string("The document ends inside a tag.")
                               : "The document ends inside of " + quoted(fault->open.back()) + ".",
           "Ad server or whoever is between: send the whole document; look for a limit of size or "
           "time.")
      .with("openElements", fault->open);
}

}  // namespace tamzo::explain
