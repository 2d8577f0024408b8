#include "base/Ascii.h"
#include "explain/Rules.h"
#include "explain/Words.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

std::string sentenceOf(std::string_view root) {
  const std::string_view local = root.substr(root.rfind(':') + 1);
  if (local == "VMAP") {
    return "The document is a VMAP, a list of ad breaks, and no VAST document.";
  }
  if (equalsInAnyCase(root, "VAST")) {
    return "The root is " + quoted(root) + ": it must be \"VAST\" in capital letters.";
  }
  return "The root is " + quoted(root) + " and not \"VAST\".";
}

}  // namespace

void findNotVast(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() != kBadVersion || !hop.parsed ||
      !hop.parsed->nodesForXPath("/VAST").empty()) {
    return;
  }
  const std::string_view root = hop.rootName;
  const bool isVmap = root.substr(root.rfind(':') + 1) == "VMAP";
  findings.add(hop.number)
      .at(hop.parsed->rootElement())
      .say(sentenceOf(root), isVmap ? "App: ask for the tags that the VMAP lists, one by one."
                                    : "Ad server: answer with a document whose root is VAST.")
      .with("root", root);
}

}  // namespace tamzo::explain
