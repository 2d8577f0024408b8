#include "sdk/HostFetch.h"

#include <chrono>
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

// What has failed because the chain was cancelled or has no time left; nullopt where neither is so.
std::optional<FetchResult> lateFetch(const FetchRequest& request) {
  if (request.cancellation.isCancelled()) {
    return failedFetch(request.url, FetchFailure::cancelled);
  }
  if (request.deadline.isPast()) {
    return failedFetch(request.url, FetchFailure::timeout, FetchCause::chainTime);
  }
  return std::nullopt;
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
  using Clock = std::chrono::steady_clock;
  if (request.url.isNil()) {
    return failedFetch(request.url, FetchFailure::protocol);
  }
  if (std::optional<FetchResult> late = lateFetch(request)) {
    return *std::move(late);
  }
  if (!host.fetch && !host.readUrl) {
    return TamzoUrlReader::fetch(request);
  }
  const Clock::time_point begin = Clock::now();
  FetchResult result = askHost(host, request);
  if (std::optional<FetchResult> late = lateFetch(request)) {
    late->milliseconds.total =
        std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    return *std::move(late);
  }
  return result;
}

}  // namespace tamzo
