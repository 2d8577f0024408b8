#include "base/JsonReader.h"
#include "explain/Rules.h"
#include "tamzo/base/JsonValue.h"

namespace tamzo::explain {
namespace {

std::string_view whyUnread(const Text& json) {
  switch (checkJson(json)) {
    case JsonFault::tooDeep:
      return "too-deep";
    case JsonFault::tooLong:
      return "too-long";
    default:
      return "malformed";
  }
}

}  // namespace

void findExtraActionsUnread(const Chain& chain, Findings& findings) {
  for (const SeenHop& hop : chain.hops()) {
    for (const DDXMLElement& block : vendorBlocksOf(hop)) {
      const DDXMLElement element = block.firstNodeForXPath("ExtraActions");
      const Text json = element.stringValue();
      if (!json.hasCharacters() || !JsonValue::parse(json).isNil()) {
        continue;
      }
      if (!findings.wants(hop.number)) {
        findings.skip(hop.number);
        continue;
      }
      const std::string_view why = whyUnread(json);
      findings.add(hop.number)
          .at(element)
          .say("The vendor's ExtraActions are no JSON that can be read: " + std::string(why) + ".",
               "Ad server: check the JSON; it nests 512 levels deep at most.")
          .with("why", why);
    }
  }
}

}  // namespace tamzo::explain
