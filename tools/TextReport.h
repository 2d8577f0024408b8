#pragma once

#include <cstddef>
#include <string>

#include "explain/Explanation.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo::command {

struct ReportStyle {
  bool withColours = false;
  std::size_t columns = 0;  ///< of the terminal that shows it, to which texts are cut; 0: none
};

/// The record for people: what happened and what to do about it, the chain, what the ad is, and its
/// media files, trackers and the rest as aligned tables. Nothing in it can harm a terminal.
std::string textReport(const TamzoVastAd& ad, const explain::Explanation& explanation,
                       const ReportStyle& style);

}  // namespace tamzo::command
