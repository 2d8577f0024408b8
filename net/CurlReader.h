#pragma once

#include "tamzo/net/Fetch.h"

namespace tamzo {

/// The default reader, on any thread. Compiled without libcurl every fetch fails as `other`. Throws
/// std::bad_alloc.
FetchResult fetchWithCurl(const FetchRequest& request);

/// Closes the connections that no fetch is using.
void closeIdleCurlConnections() noexcept;

}  // namespace tamzo
