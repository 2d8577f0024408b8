#include "net/CurlReader.h"

#include "net/FailedFetch.h"

namespace tamzo {

// Built without libcurl: a host brings a reader of its own, and until then every fetch fails.
FetchResult fetchWithCurl(const FetchRequest& request) {
  return failedFetch(request.url, FetchFailure::other);
}

void closeIdleCurlConnections() noexcept {}

}  // namespace tamzo
