// As a bridge to Java is made: C functions around the library.

#include <string>

#include "tamzo/vast/RecordJson.h"
#include "tamzo/vast/TamzoVastAd.h"

extern "C" __attribute__((visibility("default"))) int bridgeErrorCode(const char* response) {
  const auto ad = tamzo::TamzoVastAd::initWithVast(std::string(response));
  return tamzo::recordAsJson(*ad).empty() ? -1 : ad->errorCode();
}
