#include "explain/Names.h"
#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

Names typesOf(const DDXMLElement& linear) {
  Names types;
  const auto files = linear.firstNodeForXPath("MediaFiles");
  for (auto file = files.firstChildElement(); file; file = file.nextSiblingElement()) {
    const Text type = file.attributeValue("type");
    const Text name = file.name();
    const bool isMedia = name.view() == "MediaFile" || name.view() == "InteractiveCreativeFile";
    if (isMedia && !type.isNil()) {
      types.add(type);
    }
  }
  return types;
}

}  // namespace

void findNoUsableMedia(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() != kNoUsableLinear || hop.linears.empty()) {
    return;
  }
  const Names types = typesOf(hop.linears.at(0));
  findings.add(hop.number)
      .at(hop.linears.at(0))
      .say("The Linear has no MP4 file and no JavaScript VPAID unit; the types it has: " +
               types.inWords() + ".",
           "Ad server: add a MediaFile with type=\"video/mp4\", written just so.")
      .with("types", types.list());
}

}  // namespace tamzo::explain
