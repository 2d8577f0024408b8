#include "explain/Categories.h"
#include "explain/Rules.h"
#include "explain/Words.h"

namespace tamzo::explain {

void findCategoryNearMiss(const Chain& chain, Findings& findings) {
  for (const SeenHop& hop : chain.hops()) {
    if (hop.blockedCategories.isNil()) {
      continue;
    }
    const BlockedEntries blocked(hop.blockedCategories);
    for (const DDXMLElement& category : comparedCategories(hop)) {
      const Text text = category.stringValue();
      const std::string_view entry = blocked.nearMissOf(text);
      if (entry.empty()) {
        continue;
      }
      if (!findings.takes(hop.number)) {
        continue;
      }
      findings.add(hop.number)
          .at(category)
          .say("The category " + quoted(text) + " differs from the blocked " + quoted(entry) +
                   " in white space or letter case only, and passes.",
               "App: write the blocked categories as the ad server does; they are compared as "
               "they stand.")
          .with("category", text)
          .with("entry", entry);
    }
  }
}

}  // namespace tamzo::explain
