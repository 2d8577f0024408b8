#pragma once

#include "tamzo/net/Fetch.h"

namespace tamzo {

/// What came of a fetch of which there is nothing to tell but why it failed. Throws std::bad_alloc.
inline FetchResult failedFetch(const Text& url, FetchFailure failure,
                               FetchCause cause = FetchCause::none) {
  FetchResult result;
  result.finalUrl = url.view();
  result.failure = failure;
  result.cause = cause;
  return result;
}

}  // namespace tamzo
