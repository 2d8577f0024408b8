#include <fmt/format.h>

#include "explain/Rules.h"

namespace tamzo::explain {

void findControlCharacter(const Chain& chain, Findings& findings) {
  const Fault* fault = chain.faultOf(FaultKind::controlCharacter);
  if (fault == nullptr) {
    return;
  }
  findings.add(chain.last().number)
      .atByte(fault->at)
      .say("The text holds the character U+" + fmt::format("{:04X}", fault->codePoint) +
               ", which XML does not allow.",
           "Ad server: take control characters out of titles and texts before they are sent.")
      .with("codePoint", std::size_t{fault->codePoint});
}

}  // namespace tamzo::explain
