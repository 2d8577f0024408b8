#include "explain/Rules.h"

namespace tamzo::explain {

// Whatever stopped the reading and has no finding of its own.
void findException(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  const Text& what = chain.what();
  findings.add(hop.number)
      .say(what.hasCharacters() ? "Reading was stopped: " + std::string(what.view()) + "."
                                : std::string("Reading was stopped by an exception."),
           "App: --debug shows where it came from.")
      .with("what", what);
}

}  // namespace tamzo::explain
