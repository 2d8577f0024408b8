#include "explain/Rules.h"

namespace tamzo::explain {

void findUnescapedAmpersand(const Chain& chain, Findings& findings) {
  const Fault* fault = chain.faultOf(FaultKind::unescapedAmpersand);
  if (fault == nullptr) {
    return;
  }
  findings.add(chain.last().number)
      .atByte(fault->at)
      .say("An \"&\" is not written as \"&amp;\".",
           "Ad server: escape every \"&\" in URLs and texts, or put them into CDATA.");
}

}  // namespace tamzo::explain
