#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tamzo::command {

/// The one of `names` that was probably meant by `typed`: one that begins with it, or differs by a
/// slip of the hand or two; "" when there is none.
std::string nearestName(std::string_view typed, const std::vector<std::string>& names);

/// "; did you mean NAME?", or "".
std::string didYouMean(std::string_view typed, const std::vector<std::string>& names);

}  // namespace tamzo::command
