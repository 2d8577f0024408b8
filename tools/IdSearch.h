#pragma once

#include <string>
#include <string_view>

namespace tamzo::command {

/// The id of a line that is no JSON, or of the beginning of one: the value of the last member "id"
/// of the outer object whose place is beyond doubt, behind a fault too. "null" where there is none.
std::string searchId(std::string_view line);

}  // namespace tamzo::command
