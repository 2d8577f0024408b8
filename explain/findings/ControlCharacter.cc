#include <fmt/format.h>

#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findControlCharacter(const Chain& chain, Findings& findings) {
  if (chain.errorCode() != kNotXml || chain.refusal().fault.kind != FaultKind::controlCharacter) {
    return;
  }
  const Fault& fault = chain.refusal().fault;
  findings.add(chain.last().number)
      .atByte(fault.at)
      .say("The text holds the character U+" + fmt::format("{:04X}", fault.codePoint) +
               ", which XML does not allow.",
           "Ad server: take control characters out of titles and texts before they are sent.")
      .with("codePoint", std::size_t{fault.codePoint});
}

}  // namespace tamzo::explain
