#include "base/JsonReader.h"
#include "base/Utf8.h"
#include "base/WhiteSpace.h"
#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

// Only whether it can be read is asked.
class NoHandler : public JsonHandler {
 public:
  bool scalar(std::string_view) override { return true; }
  bool string(std::string_view, std::string_view) override { return true; }
  bool key(std::string_view) override { return true; }
  bool begin(std::string_view) override { return true; }
  bool end(std::string_view, std::size_t) override { return true; }
};

bool isJson(std::string_view text) {
  if (text.starts_with(kByteOrderMark)) {
    text.remove_prefix(kByteOrderMark.size());
  }
  const std::string_view begin = withoutLeadingWhiteSpace(text);
  NoHandler handler;
  return (begin.starts_with('{') || begin.starts_with('[')) &&
         readJson(text, handler) == JsonFault::none;
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
