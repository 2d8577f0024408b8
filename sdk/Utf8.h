#pragma once

#include <string_view>

#include "xml/Export.h"

namespace tamzo {

/// True when the bytes are well-formed UTF-8.
TAMZO_EXPORT bool isUtf8(std::string_view bytes) noexcept;

}  // namespace tamzo
