#include "explain/Rules.h"
#include "explain/Places.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findBeyondBounds(const Chain& chain, Findings& findings) {
  if (chain.errorCode() != kNotXml || chain.refusal().bound.empty()) {
    return;
  }
  findings.add(chain.last().number)
      .say("The document goes beyond a bound that the parser keeps to: " +
               shortened(chain.refusal().parser, 200) + ".",
           "Ad server: send a smaller document; no ad response comes near these bounds.")
      .with("bound", chain.refusal().bound);
}

}  // namespace tamzo::explain
