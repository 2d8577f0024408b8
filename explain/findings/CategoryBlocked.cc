#include <fmt/format.h>

#include "explain/Categories.h"
#include "explain/Rules.h"
#include "explain/Words.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findCategoryBlocked(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() != kCategoryBlocked) {
    return;
  }
  const BlockedEntries blocked(hop.blockedCategories);
  for (const DDXMLElement& category : comparedCategories(hop)) {
    const Text text = category.stringValue();
    if (const std::size_t entry = blocked.placeOf(text); entry != 0) {
      findings.add(hop.number)
          .at(category)
          .say(fmt::format("The app blocks the category {}, entry {} of its list.", quoted(text),
                           entry),
               "App: take it off the list of blocked categories if such ads are welcome. Ad "
               "server: do not answer this app with it.")
          .with("category", text)
          .with("entry", entry);
      return;
    }
  }
}

}  // namespace tamzo::explain
