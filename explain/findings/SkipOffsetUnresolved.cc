#include "explain/Rules.h"
#include "explain/Words.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

void check(const SeenHop& hop, const DDXMLElement& element, const Text& offset,
           Findings& findings) {
  if (!offset.view().ends_with('%')) {
    return;
  }
  if (!findings.takes(hop.number)) {
    return;
  }
  findings.add(hop.number)
      .at(element)
      .say("The skip offset " + quoted(offset) +
               " is a percentage, which is read before the duration and counts as 0 seconds.",
           "Ad server: write the skip offset as HH:MM:SS.")
      .with("text", offset);
}

}  // namespace

void findSkipOffsetUnresolved(const Chain& chain, Findings& findings) {
  for (const SeenHop& hop : chain.hops()) {
    const bool isInLine = hop.isRead() && hop.kind == AdKind::inLine;
    if (isInLine && chain.errorCode() == kCategoryBlocked) {
      continue;  // it was read no further than its categories
    }
    if (isInLine && hop.major >= 3 && !hop.linears.empty()) {
      check(hop, hop.linears.at(0), hop.linears.at(0).attributeValue("skipoffset"), findings);
    }
    for (const DDXMLElement& block : vendorBlocksOf(hop)) {
      const DDXMLElement element = block.firstNodeForXPath("SkipOffset");
      check(hop, element, element.stringValue(), findings);
    }
  }
}

}  // namespace tamzo::explain
