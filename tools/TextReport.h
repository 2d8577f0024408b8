#pragma once

#include <string>

#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo::command {

/// The record for people: what the ad is, what failed and what that means, and its media files,
/// trackers and the rest as aligned tables. Nothing in it can harm a terminal.
std::string textReport(const TamzoVastAd& ad, bool withColours);

}  // namespace tamzo::command
