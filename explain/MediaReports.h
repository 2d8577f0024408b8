#pragma once

#include <vector>

#include "explain/Chain.h"
#include "explain/Explanation.h"

namespace tamzo::explain {

/// Every MediaFile and InteractiveCreativeFile of the last document that could be parsed, in its
/// order, with why it was not taken.
std::vector<MediaFileReport> reportMediaFiles(const Chain& chain);

}  // namespace tamzo::explain
