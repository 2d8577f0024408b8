// A host that links the installed package.

#include "tamzo/vast/RecordJson.h"
#include "tamzo/vast/TamzoVastAd.h"

int main() {
  const auto ad = tamzo::TamzoVastAd::initWithVast("<VAST version='3.0'/>");
  return ad->errorCode() == tamzo::kNoAd && !tamzo::recordAsJson(*ad).empty() ? 0 : 1;
}
