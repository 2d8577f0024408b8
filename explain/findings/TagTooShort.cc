#include <fmt/format.h>

#include "base/Utf8.h"
#include "explain/Places.h"
#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

constexpr std::size_t kShortest = 4;

void findShortResponse(const Text& response, Findings& findings) {
  const std::size_t length = utf16Length(response);
  findings.add(1)
      .say(length == 0
               ? std::string("The response is empty.")
               : fmt::format("The response has only {} of the 4 characters that it needs.", length),
           "Ad server: answer with a VAST document, also when there is no ad.")
      .with("length", length);
}

void findShortTag(const Text& tag, const SeenHop& hop, Findings& findings) {
  const auto element = hop.followed.firstNodeForXPath("VASTAdTagURI");
  const std::size_t length = utf16Length(tag);
  findings.add(hop.number)
      .at(element ? element : hop.followed)
      .say(element ? fmt::format("The Wrapper's VASTAdTagURI has only {} of the 4 characters that "
                                 "it needs.",
                                 length)
                   : std::string("The Wrapper has no VASTAdTagURI."),
           "Whoever made the Wrapper: put the URL of the next response into VASTAdTagURI.")
      .with("length", length);
}

}  // namespace

void findTagTooShort(const Chain& chain, Findings& findings) {
  const SeenHop& last = chain.last();
  if (chain.errorCode() != kException) {
    return;
  }
  if (last.kind == AdKind::wrapper && isShorterThan(chain.ad().vastTagURI(), kShortest)) {
    findShortTag(chain.ad().vastTagURI(), last, findings);
  } else if (last.source == HopSource::input && isShorterThan(last.document, kShortest)) {
    findShortResponse(last.document, findings);
  }
}

}  // namespace tamzo::explain
