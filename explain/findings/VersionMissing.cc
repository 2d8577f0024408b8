#include "explain/Rules.h"
#include "explain/TagText.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findVersionMissing(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() != kBadVersion || !hop.parsed || hop.version.hasCharacters()) {
    return;
  }
  std::vector<std::string> names;
  const std::string_view text = hop.document;
  if (const std::size_t root = findRoot(text); root != std::string_view::npos) {
    for (const AttributeText& attribute : readTag(text, root).attributes) {
      names.emplace_back(attribute.name);
    }
  }
  findings.add(hop.number)
      .at(hop.parsed->rootElement())
      .say(hop.version.isNil() ? "The root has no version." : "The version of the root is empty.",
           "Ad server: write the version of VAST into the root, as in <VAST version=\"4.0\">.")
      .with("attributes", names);
}

}  // namespace tamzo::explain
