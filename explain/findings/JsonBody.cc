#include "base/JsonReader.h"
#include "base/Utf8.h"
#include "base/WhiteSpace.h"
#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

bool isJson(std::string_view text) {
  if (text.starts_with(kByteOrderMark)) {
    text.remove_prefix(kByteOrderMark.size());
  }
  const std::string_view begin = withoutLeadingWhiteSpace(text);
  return (begin.starts_with('{') || begin.starts_with('[')) &&
         checkJson(text) == JsonFault::none;
}

}  // namespace

void findJsonBody(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() == kNotXml && hop.source != HopSource::tag && isJson(hop.document)) {
    findings.add(hop.number)
        .say("The response is JSON and no VAST document.",
             "Whoever asks: take the VAST out of the JSON first, or ask the endpoint that "
             "answers with VAST.");
  }
}

}  // namespace tamzo::explain
