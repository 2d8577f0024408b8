#pragma once

#include <cstddef>
#include <string_view>

#include "base/AssignmentSearch.h"

namespace tamzo {

/// What the clean-up puts one bare word in place of: from the word to past the white space.
using Collapse = TextMatch;

/// The first place at or after `from` that TamzoVastAd::replaceWithPattern() collapses; false as a
/// flag where there is none.
Collapse findCollapse(std::string_view text, std::string_view word, std::size_t from) noexcept;

}  // namespace tamzo
