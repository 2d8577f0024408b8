#include "base/Ascii.h"
#include "base/WhiteSpace.h"
#include "explain/Rules.h"
#include "explain/Words.h"
#include "sdk/ClockTime.h"

namespace tamzo::explain {
namespace {

// A clock time that comes to no seconds at all can be told from what is none by its characters.
bool isClock(std::string_view text) {
  if (clockSeconds(text) != 0) {
    return true;
  }
  // With a second more it would count.
  const std::string_view clock = trimWhiteSpace(text);
  const std::size_t last = clock.rfind(':');
  if (last == std::string_view::npos) {
    return false;
  }
  std::string later(clock);
  later.insert(last + 1, "1");
  return last + 1 < clock.size() && isAsciiDigit(clock[last + 1]) && clockSeconds(later) != 0;
}

}  // namespace

void findDurationUnreadable(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (!hop.isRead() || hop.kind != AdKind::inLine) {
    return;
  }
  const DDXMLElement element = hop.linears.firstMatch("Duration");
  const Text text = element.stringValue();
  if (text.hasCharacters() && !isClock(text)) {
    findings.add(hop.number)
        .at(element)
        .say("The Duration " + quoted(text) + " is no clock time and counts as 0 seconds.",
             "Ad server: write it as HH:MM:SS, as in 00:00:30.")
        .with("text", text);
  }
}

}  // namespace tamzo::explain
