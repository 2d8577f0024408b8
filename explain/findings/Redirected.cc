#include <fmt/format.h>

#include "explain/Rules.h"
#include "explain/Words.h"

namespace tamzo::explain {

void findRedirected(const Chain& chain, Findings& findings) {
  for (const SeenHop& hop : chain.hops()) {
    if (!hop.fetch || hop.fetch->redirects.empty()) {
      continue;
    }
    const std::size_t count = hop.fetch->redirects.size();
    findings.add(hop.number)
        .say(fmt::format("The fetch was redirected {}, to {}.", counted(count, "time", "times"),
                         quoted(hop.fetch->finalUrl)),
             "Whoever made the tag: ask the last address at once; each redirect takes time.")
        .with("count", count);
  }
}

}  // namespace tamzo::explain
