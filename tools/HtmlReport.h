#pragma once

#include <string>
#include <vector>

#include "explain/Explanation.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo::command {

/// The record and its explanation as one HTML page, which loads nothing and runs nothing. What a
/// server sent is shown, and has no effect. Tables and documents are cut where they are very long.
std::string htmlReport(const TamzoVastAd& ad, const explain::Explanation& explanation,
                       const std::vector<std::string>& log);

}  // namespace tamzo::command
