#pragma once

#include <string_view>

namespace tamzo {

/// The SDK's own page template, sdk/VpaidWrapperPage.html, built into the library.
std::string_view vpaidWrapperPage() noexcept;

}  // namespace tamzo
