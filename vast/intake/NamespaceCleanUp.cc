// Takes the default namespace of a response away.

#include "tamzo/vast/TamzoVastAd.h"

#include <string>
#include <string_view>

#include "base/AssignmentSearch.h"
#include "base/WhiteSpace.h"

namespace tamzo {

Text TamzoVastAd::replaceWithPattern(std::string_view word, const Text& forVastString) {
  const std::string_view text = forVastString;
  std::string cleaned;
  std::size_t copied = 0;
  for (TextMatch match = findAssignment(text, word, 0); match;
       match = findAssignment(text, word, copied)) {
    // Every line terminator is white space, so the shortest run always ends at the first of it.
    const std::size_t end = findWhiteSpace(text, match.end);
    if (end == text.size()) {
      break;  // no white space in the rest of the text: nothing more can match
    }
    if (copied == 0) {
      cleaned.reserve(text.size());
    }
    cleaned += text.substr(copied, match.begin - copied);
    cleaned += word;
    copied = end + whiteSpaceAt(text, end);
  }
  if (copied == 0) {
    return forVastString;
  }
  cleaned += text.substr(copied);
  return Text(std::move(cleaned));
}

}  // namespace tamzo
