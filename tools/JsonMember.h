#pragma once

#include <string>
#include <string_view>

namespace tamzo::command {

/// The value of a member of a JSON object as it is written there, numbers of any length and the
/// order of members included, on one line; "null" when there is none. Of several the last counts,
/// as it does for every JSON reader here. `object` must be the text of a well-formed JSON object.
std::string writtenMember(std::string_view object, std::string_view name);

}  // namespace tamzo::command
