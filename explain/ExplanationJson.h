#pragma once

#include <string>

#include "explain/Explanation.h"
#include "tamzo/vast/RecordJson.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo::explain {

/// The explanation as a JSON object.
std::string explanationAsJson(const Explanation& explanation,
                              JsonLayout layout = JsonLayout::compact);

/// `{"record": ..., "explanation": ...}`.
std::string recordWithExplanation(const TamzoVastAd& ad, const Explanation& explanation,
                                  JsonLayout layout = JsonLayout::compact);

}  // namespace tamzo::explain
