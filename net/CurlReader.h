#pragma once

#include "tamzo/net/Fetch.h"

namespace tamzo {

/// The default reader. Compiled without libcurl every fetch fails as `other`.
FetchResult fetchWithCurl(const FetchRequest& request);

/// Closes the connections that no fetch is using.
void closeIdleCurlConnections() noexcept;

}  // namespace tamzo
