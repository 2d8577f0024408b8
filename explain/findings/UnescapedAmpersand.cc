#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findUnescapedAmpersand(const Chain& chain, Findings& findings) {
  if (chain.errorCode() != kNotXml || chain.refusal().fault.kind != FaultKind::unescapedAmpersand) {
    return;
  }
  const Fault& fault = chain.refusal().fault;
  findings.add(chain.last().number)
      .atByte(fault.at)
      .say("An \"&\" is not written as \"&amp;\".",
           "Ad server: escape every \"&\" in URLs and texts, or put them into CDATA.");
}

}  // namespace tamzo::explain
