#include "sdk/HostFetch.h"

#include <new>
#include <optional>
#include <string>
#include <utility>

#include "tamzo/sdk/TamzoLogger.h"

namespace tamzo {
namespace {

// What a host's simple reader brings, as the result that it would be.
FetchResult resultOf(const Text& url, std::optional<std::string> body) {
  FetchResult result = failedFetch(url, FetchFailure::none);
  if (!body) {
    result.failure = FetchFailure::other;
  } else if (body->empty()) {
    result.failure = FetchFailure::empty;
  }
  result.bytes = body ? body->size() : 0;
  result.body = std::move(body);
  return result;
}

FetchFailure whyTooLate(const FetchRequest& request) noexcept {
  if (request.cancellation.isCancelled()) {
    return FetchFailure::cancelled;
  }
  return request.deadline.isPast() ? FetchFailure::timeout : FetchFailure::none;
}

FetchResult askHost(const TamzoHost& host, const FetchRequest& request) {
  std::optional<std::string> body;
  try {
    if (host.fetch) {
      return host.fetch(request);
    }
    body = host.readUrl(request.url);
  } catch (const std::bad_alloc&) {
    TAMZO_LOG("error: the host's reader ran out of memory");
    return failedFetch(request.url, FetchFailure::other);
  }
  return resultOf(request.url, std::move(body));
}

}  // namespace

FetchResult failedFetch(const Text& url, FetchFailure failure) {
  FetchResult result;
  result.finalUrl = url.view();
  result.failure = failure;
  return result;
}

FetchResult fetchByHost(const TamzoHost& host, const FetchRequest& request) {
  FetchFailure late = request.url.isNil() ? FetchFailure::protocol : whyTooLate(request);
  if (late != FetchFailure::none) {
    FetchResult result = failedFetch(request.url, late);
    result.cause = late == FetchFailure::timeout ? FetchCause::chainTime : FetchCause::none;
    return result;
  }
  if (!host.fetch && !host.readUrl) {
    return TamzoUrlReader::fetch(request);
  }
  FetchResult result = askHost(host, request);
  late = whyTooLate(request);
  return late == FetchFailure::none ? std::move(result) : failedFetch(request.url, late);
}

}  // namespace tamzo
