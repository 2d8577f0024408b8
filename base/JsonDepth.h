#pragma once

#include <string_view>

namespace tamzo {

/// True when the brackets of a JSON text nest no deeper than 512, the most that the system takes.
/// Whether the text is JSON is not looked at.
bool isShallowJson(std::string_view json) noexcept;

}  // namespace tamzo
