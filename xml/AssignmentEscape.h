#pragma once

#include <string>
#include <string_view>

namespace tamzo {

/// Writes well-formed `xml` in another way, so that `word` nowhere stands right before "=" (see
/// findAssignment). Readers see the same document; comments and instructions gain a blank there.
std::string withoutAssignments(std::string xml, std::string_view word);

}  // namespace tamzo
