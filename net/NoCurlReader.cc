#include "net/CurlReader.h"

namespace tamzo {

// Built without libcurl: a host brings a reader of its own, and until then every fetch fails.
FetchResult fetchWithCurl(const FetchRequest& request) {
  FetchResult result;
  result.failure = FetchFailure::other;
  result.finalUrl = request.url.view();
  return result;
}

void closeIdleCurlConnections() noexcept {}

}  // namespace tamzo
