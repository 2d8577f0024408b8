#include <string>
#include <vector>

#include "explain/Names.h"
#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

// The version has a finding of its own where it is the reason of the failure.
bool isVersionTheError(const Chain& chain) {
  const SeenHop& first = chain.hops().front();
  return chain.hops().size() == 1 && chain.errorCode() == kBadVersion &&
         !first.version.hasCharacters() && chain.cleanUp().findVersionTaken();
}

}  // namespace

void findCollapseTookAttributes(const Chain& chain, Findings& findings) {
  const SeenHop& first = chain.hops().front();
  if (!Chain::isCleaned(first) || !first.parsed || !chain.cleanUp().changes()) {
    return;
  }
  auto taken = chain.cleanUp().findTaken();
  if (taken && isVersionTheError(chain)) {
    std::erase(taken->names, "version");
  }
  if (!taken || taken->names.empty()) {
    return;
  }
  Names names;
  for (const std::string& name : taken->names) {
    names.add(name);
  }
  findings.add(first.number)
      .atByte(taken->at)
      .say("Attributes are lost when xmlns= is taken away up to the next white space: " +
               names.inWords() + ".",
           "Ad server: drop the default xmlns, or write an attribute behind it that nobody needs.")
      .with("attributes", taken->names);
}

}  // namespace tamzo::explain
