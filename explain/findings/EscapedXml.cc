#include "base/Utf8.h"
#include "base/WhiteSpace.h"
#include "explain/Rules.h"
#include "tamzo/base/JsonValue.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

bool isQuotedXml(std::string_view text) {
  if (text.size() < 3 || (text.front() != '"' && text.front() != '\'') ||
      text.back() != text.front()) {
    return false;
  }
  if (withoutLeadingWhiteSpace(text.substr(1)).starts_with('<')) {
    return true;
  }
  const Text unquoted = JsonValue::parse(text).asText();
  return trimWhiteSpace(unquoted).starts_with('<');
}

bool isEscaped(std::string_view text) {
  text = trimWhiteSpace(text.substr(byteOrderMarkOf(text)));
  return text.starts_with("&lt;") || isQuotedXml(text);
}

}  // namespace

void findEscapedXml(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() == kNotXml && hop.source != HopSource::tag && isEscaped(hop.document)) {
    findings.add(hop.number)
        .say("The response is XML that was escaped once too often.",
             "Whoever hands the response on: give the text itself, without quotes around it and "
             "with \"<\" for \"&lt;\".");
  }
}

}  // namespace tamzo::explain
