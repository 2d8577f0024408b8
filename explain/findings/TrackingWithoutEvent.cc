#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {

void findTrackingWithoutEventName(const Chain& chain, Findings& findings) {
  if (chain.errorCode() != kException) {
    return;
  }
  if (const auto tracking = findTrackingWithoutEvent(chain.last())) {
    findings.add(chain.last().number)
        .at(tracking)
        .say("A Tracking element has no event attribute.",
             "Ad server: name the event, or leave the element out.");
  }
}

}  // namespace tamzo::explain
