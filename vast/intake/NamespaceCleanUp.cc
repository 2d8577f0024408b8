// Takes the default namespace of a response away.

#include "vast/intake/NamespaceCleanUp.h"

#include <string>
#include <string_view>

#include "base/WhiteSpace.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo {

Collapse findCollapse(std::string_view text, std::string_view word, std::size_t from) noexcept {
  const TextMatch match = findAssignment(text, word, from);
  if (!match) {
    return {};
  }
  // Every line terminator is white space, so the shortest run always ends at the first of it.
  const std::size_t end = findWhiteSpace(text, match.end);
  if (end == text.size()) {
    return {};  // no white space in the rest of the text: nothing more can match
  }
  return {match.begin, end + whiteSpaceAt(text, end)};
}

Text TamzoVastAd::replaceWithPattern(std::string_view word, const Text& forVastString) {
  const std::string_view text = forVastString;
  std::string cleaned;
  std::size_t copied = 0;
  for (Collapse match = findCollapse(text, word, 0); match;
       match = findCollapse(text, word, copied)) {
    if (copied == 0) {
      cleaned.reserve(text.size());
    }
    cleaned += text.substr(copied, match.begin - copied);
    cleaned += word;
    copied = match.end;
  }
  if (copied == 0) {
    return forVastString;
  }
  cleaned += text.substr(copied);
  return Text(std::move(cleaned));
}

}  // namespace tamzo
