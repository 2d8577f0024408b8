#include "explain/Names.h"
#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

Names kindsOf(const DDXMLElement& inLine) {
  Names kinds;
  for (const DDXMLElement& creative : inLine.nodesForXPath("Creatives/Creative")) {
    for (auto child = creative.firstChildElement(); child; child = child.nextSiblingElement()) {
      const Text name = child.name();
      if (name.view() != "UniversalAdId" && name.view() != "CreativeExtensions") {
        kinds.add(name);
      }
    }
  }
  return kinds;
}

}  // namespace

void findNoLinear(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() != kNoUsableLinear || !hop.linears.empty()) {
    return;
  }
  const Names kinds = kindsOf(hop.followed);
  findings.add(hop.number)
      .at(hop.followed)
      .say("The InLine has no Linear, which alone is played; its creatives are: " +
               kinds.inWords() + ".",
           "Ad operations: book a linear video for this placement.")
      .with("creatives", kinds.list());
}

}  // namespace tamzo::explain
