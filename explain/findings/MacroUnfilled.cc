#include "explain/MacroFilling.h"
#include "explain/Names.h"
#include "explain/Rules.h"

namespace tamzo::explain {

void findMacroUnfilled(const Chain& chain, Findings& findings) {
  for (const SeenHop& hop : chain.hops()) {
    const Text filled = chain.filledTagOf(hop);
    Names names;
    for (BracketedName name = findBracketedName(filled, 0); name;
         name = findBracketedName(filled, name.end())) {
      names.add(name.name);
    }
    if (!names.list().empty()) {
      findings.add(hop.number)
          .at(hop.followed.firstNodeForXPath("VASTAdTagURI"))
          .say("Macros of the tag are left as they are: " + names.inWords() + ".",
               "Whoever made the tag: use the IAB's macros, in capital letters; others are not "
               "filled here.")
          .with("names", names.list());
    }
  }
}

}  // namespace tamzo::explain
