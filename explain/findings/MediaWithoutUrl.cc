#include "explain/Rules.h"

namespace tamzo::explain {

void findMediaWithoutUrl(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (!hop.isRead() || hop.kind != AdKind::inLine) {
    return;
  }
  for (const DDXMLElement& file : hop.linears.nodesUnderFirst("MediaFiles/MediaFile")) {
    if (TamzoMediaFile(file).url().hasCharacters()) {
      continue;
    }
    if (!findings.takes(hop.number)) {
      continue;
    }
    findings.add(hop.number)
        .at(file)
        .say("A MediaFile has no URL.",
             "Ad server: write the URL of the file into the element, or leave the element out.");
  }
}

}  // namespace tamzo::explain
