#include "sdk/Utf8.h"

#include <utf8.h>

namespace tamzo {

bool isUtf8(std::string_view bytes) noexcept { return utf8::is_valid(bytes.begin(), bytes.end()); }

}  // namespace tamzo
