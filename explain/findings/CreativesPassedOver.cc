#include <fmt/format.h>

#include "explain/Rules.h"
#include "explain/Words.h"

namespace tamzo::explain {

void findCreativesPassedOver(const Chain& chain, Findings& findings) {
  for (const SeenHop& hop : chain.hops()) {
    if (!hop.isRead() || hop.linears.size() < 2) {
      continue;
    }
    const std::size_t count = hop.linears.size() - 1;
    std::size_t usable = 0;
    for (std::size_t i = 1; i <= count; ++i) {
      usable += isUsable(hop.linears.at(i)) ? 1 : 0;
    }
    findings.add(hop.number)
        .at(hop.linears.at(1))
        .say(fmt::format("{} after the first {} not looked at; {} of them could have been played.",
                         counted(count, "Linear", "Linears"), count == 1 ? "is" : "are", usable),
             "Ad server: put the Linear that is meant to play first.")
        .with("count", count)
        .with("usable", usable);
  }
}

}  // namespace tamzo::explain
