#include "explain/Places.h"
#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findBeyondBounds(const Chain& chain, Findings& findings) {
  if (chain.errorCode() != kNotXml || (chain.refusal().bound.empty() && !chain.refusal().isXml)) {
    return;
  }
  // What is XML by itself was too much after the documents before it.
  const std::string bound = chain.refusal().isXml ? "nodes" : chain.refusal().bound;
  const std::string reason = chain.refusal().isXml ? "too many nodes" : chain.refusal().parser;
  findings.add(chain.last().number)
      .say("The document goes beyond a bound that the parser keeps to: " + shortened(reason, 200) +
               ".",
           "Ad server: send a smaller document; no ad response comes near these bounds.")
      .with("bound", bound);
}

}  // namespace tamzo::explain
