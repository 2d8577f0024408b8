#include "explain/Rules.h"
#include "explain/TagText.h"
#include "explain/Words.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

// Of the root as it is written; nil where it is in none.
Text namespaceOf(std::string_view text) {
  const std::size_t root = findRoot(text);
  if (root == std::string_view::npos) {
    return {};
  }
  const TagText tag = readTag(text, root);
  const std::size_t colon = tag.name.find(':');
  const std::string name = colon == std::string_view::npos
                               ? std::string("xmlns")
                               : "xmlns:" + std::string(tag.name.substr(0, colon));
  const AttributeText* declaration = findAttribute(tag, name);
  return declaration == nullptr ? Text() : Text(decoded(declaration->value));
}

}  // namespace

void findNamespacedRoot(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  const std::string_view name = hop.rootName;
  const bool isVast = name == "VAST" || name.ends_with(":VAST");
  const bool isFound = !hop.parsed || !hop.parsed->nodesForXPath("/VAST").empty();
  if (chain.errorCode() != kBadVersion || !isVast || isFound) {
    return;
  }
  const Text address = namespaceOf(chain.textRead(hop));
  if (!address.hasCharacters()) {
    return;  // a prefix that nobody declared is a part of the name
  }
  findings.add(hop.number)
      .at(hop.parsed->rootElement())
      .say("The root VAST is in the namespace " + quoted(address) + ", where it is not looked for.",
           "Ad server: drop the xmlns of the root, and its prefix.")
      .with("namespace", address);
}

}  // namespace tamzo::explain
