#include "base/WhiteSpace.h"
#include "explain/Places.h"
#include "explain/Rules.h"
#include "explain/Words.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

// Where the line of that number begins.
std::size_t beginOfLine(std::string_view text, std::size_t line) noexcept {
  std::size_t at = 0;
  for (; line > 1; --line) {
    const std::size_t end = text.find('\n', at);
    if (end == std::string_view::npos) {
      break;
    }
    at = end + 1;
  }
  return at;
}

// What the parser says of a text without a tag helps nobody.
std::string messageFor(std::string_view text, const Refusal& refusal) {
  if (text.find('<') != std::string_view::npos) {
    return "The text is not well-formed XML: " + shortened(refusal.parser, 200) + ".";
  }
  const std::string_view words = trimWhiteSpace(text);
  return words.empty() ? "The response is nothing but white space."
                       : "The response is no XML: it is the text " + quoted(words) + ".";
}

std::string adviceFor(const Fault& fault) {
  return "Ad server: " + std::string(fault.remedy.empty()
                                         ? "check the document with any XML parser."
                                         : fault.remedy);
}

}  // namespace

void findNotXml(const Chain& chain, Findings& findings) {
  if (chain.errorCode() != kNotXml) {
    return;
  }
  const SeenHop& hop = chain.last();
  const Refusal& refusal = chain.refusal();
  const bool isKnown = refusal.fault.kind != FaultKind::none;
  Draft& draft = findings.add(hop.number)
                     .say(messageFor(hop.document, refusal), adviceFor(refusal.fault))
                     .with("parser", refusal.parser);
  if (isKnown || refusal.line > 0) {
    draft.atByte(isKnown ? refusal.fault.at : beginOfLine(hop.document, refusal.line));
  }
}

}  // namespace tamzo::explain
