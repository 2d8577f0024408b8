#include "net/CurlReader.h"

#include <curl/curl.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <new>

namespace tamzo {
namespace {

constexpr long kMaxRedirects = 10;
// Headers and trailers count apart from the body; no server needs more.
constexpr std::size_t kMaxHeaderBytes = std::size_t{256} << 10U;

struct FreeHandle {
  void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
};

struct Download {
  std::string body;
  std::size_t headerBytes = 0;
  std::size_t maxBodyBytes = 0;
  bool ranOutOfMemory = false;
};

// A callback that takes less than it was given makes libcurl give the read up.
constexpr std::size_t kGiveUp = 0;

std::size_t onBody(const char* bytes, std::size_t size, std::size_t count,
                   void* userData) noexcept {
  auto& download = *static_cast<Download*>(userData);
  const std::size_t length = size * count;
  if (length > download.maxBodyBytes - download.body.size()) {
    return kGiveUp;
  }
  try {
    download.body.append(bytes, length);
  } catch (const std::bad_alloc&) {
    download.ranOutOfMemory = true;
    return kGiveUp;
  }
  return length;
}

std::size_t onHeader(const char*, std::size_t size, std::size_t count, void* userData) noexcept {
  auto& download = *static_cast<Download*>(userData);
  download.headerBytes += size * count;
  return download.headerBytes > kMaxHeaderBytes ? kGiveUp : size * count;
}

long milliseconds(double seconds) noexcept {
  // libcurl takes 0 for no limit at all.
  constexpr double kMost = std::numeric_limits<int>::max();
  return std::lround(std::clamp(std::ceil(seconds * 1000.0), 1.0, kMost));
}

bool initLibraryOnce() {
  static const bool ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  return ready;
}

bool hasHttpScheme(std::string_view url) noexcept {
  constexpr std::string_view kLetters = "http";
  for (std::size_t i = 0; i < kLetters.size(); ++i) {
    if (i >= url.size() || (url[i] | 0x20) != kLetters[i]) {
      return false;
    }
  }
  url.remove_prefix(kLetters.size());
  return url.starts_with("://") ||
         (!url.empty() && (url[0] | 0x20) == 's' && url.substr(1).starts_with("://"));
}

}  // namespace

FetchResult fetchWithCurl(const FetchRequest& request) {
  const Text& url = request.url;
  const FetchLimits& limits = request.limits;
  FetchResult result;
  result.finalUrl = url.view();
  // libcurl would guess a scheme where there is none.
  if (!hasHttpScheme(url) || !initLibraryOnce()) {
    result.failure = FetchFailure::protocol;
    return result;
  }
  const std::unique_ptr<CURL, FreeHandle> handle(curl_easy_init());
  if (handle == nullptr) {
    throw std::bad_alloc();
  }
  Download download;
  download.maxBodyBytes = limits.maxBodyBytes;
  const std::string address(url.view());

  CURL* curl = handle.get();
  curl_easy_setopt(curl, CURLOPT_URL, address.c_str());
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(curl, CURLOPT_MAXREDIRS, kMaxRedirects);
  curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L);
  curl_easy_setopt(curl, CURLOPT_ACCEPT_ENCODING, "");
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, milliseconds(limits.connectSeconds));
  curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, milliseconds(limits.totalSeconds));
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, onBody);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &download);
  curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, onHeader);
  curl_easy_setopt(curl, CURLOPT_HEADERDATA, &download);

  const CURLcode code = curl_easy_perform(curl);
  if (download.ranOutOfMemory || code == CURLE_OUT_OF_MEMORY) {
    throw std::bad_alloc();
  }
  if (code != CURLE_OK) {
    result.failure = FetchFailure::other;
    return result;
  }
  result.bytes = download.body.size();
  result.failure = download.body.empty() ? FetchFailure::empty : FetchFailure::none;
  result.body = std::move(download.body);
  return result;
}

}  // namespace tamzo
