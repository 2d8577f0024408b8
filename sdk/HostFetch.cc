#include "sdk/HostFetch.h"

#include <new>
#include <optional>
#include <string>
#include <utility>

#include "net/FailedFetch.h"
#include "tamzo/sdk/TamzoLogger.h"

namespace tamzo {
namespace {

// What a host's simple reader brings, as the result that it would be.
FetchResult resultOf(const Text& url, std::optional<std::string> body) {
  if (!body) {
    return failedFetch(url, FetchFailure::other);
  }
  FetchResult result;
  result.finalUrl = url.view();
  result.failure = body->empty() ? FetchFailure::empty : FetchFailure::none;
  result.bytes = body->size();
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

FetchResult fetchByHost(const TamzoHost& host, const FetchRequest& request) {
  FetchFailure late = request.url.isNil() ? FetchFailure::protocol : whyTooLate(request);
  if (late != FetchFailure::none) {
    return failedFetch(request.url, late,
                       late == FetchFailure::timeout ? FetchCause::chainTime : FetchCause::none);
  }
  if (!host.fetch && !host.readUrl) {
    return TamzoUrlReader::fetch(request);
  }
  FetchResult result = askHost(host, request);
  late = whyTooLate(request);
  return late == FetchFailure::none ? std::move(result) : failedFetch(request.url, late);
}

}  // namespace tamzo
