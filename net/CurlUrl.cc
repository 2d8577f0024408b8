#include "net/CurlUrl.h"

#include <locale.h>
#include <clocale>

#include <algorithm>
#include <new>
#include <utility>

#include "base/Ascii.h"

namespace tamzo {
namespace {

struct FreeByCurl {
  void operator()(char* text) const noexcept { curl_free(text); }
};

bool isAscii(const std::string& text) noexcept {
  return std::none_of(text.begin(), text.end(), isBeyondAscii);
}

// libcurl's converter of names reads them in the encoding of the thread's locale, which is ASCII in
// a program that never set one.
class Utf8Locale {
 public:
  Utf8Locale() noexcept
      : own_(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)),
        before_(own_ == nullptr ? nullptr : uselocale(own_)) {}
  ~Utf8Locale() {
    if (own_ != nullptr) {
      uselocale(before_);
      freelocale(own_);
    }
  }
  Utf8Locale(const Utf8Locale&) = delete;
  Utf8Locale& operator=(const Utf8Locale&) = delete;

 private:
  locale_t own_;
  locale_t before_;
};

std::string partOf(CURLU* handle, CURLUPart which, unsigned flags) {
  char* text = nullptr;
  const CURLUcode code = curl_url_get(handle, which, &text, flags);
  const std::unique_ptr<char, FreeByCurl> owner(text);
  if (code == CURLUE_OUT_OF_MEMORY) {
    throw std::bad_alloc();
  }
  return code == CURLUE_OK ? text : "";
}

void makeHostAscii([[maybe_unused]] CURLU* handle) {
#ifdef CURLU_PUNYCODE
  if (isAscii(partOf(handle, CURLUPART_HOST, 0))) {
    return;
  }
  const Utf8Locale scope;
  // A name that is none in any alphabet is "out of memory" to libcurl, so any failure is that.
  char* text = nullptr;
  const CURLUcode code = curl_url_get(handle, CURLUPART_HOST, &text, CURLU_PUNYCODE);
  const std::unique_ptr<char, FreeByCurl> owner(text);
  if (code == CURLUE_OK) {
    curl_url_set(handle, CURLUPART_HOST, text, 0);
  }
#endif
}

}  // namespace

std::optional<CurlUrl> CurlUrl::ofHttp(Handle handle) {
  const std::string scheme = partOf(handle.get(), CURLUPART_SCHEME, 0);
  if (scheme != "http" && scheme != "https") {
    return std::nullopt;
  }
  makeHostAscii(handle.get());
  return CurlUrl(std::move(handle));
}

std::optional<CurlUrl> CurlUrl::parse(const std::string& text) {
  Handle handle(curl_url());
  if (handle == nullptr) {
    throw std::bad_alloc();
  }
  const bool isUrl = curl_url_set(handle.get(), CURLUPART_URL, text.c_str(), 0) == CURLUE_OK;
  return isUrl ? ofHttp(std::move(handle)) : std::nullopt;
}

std::optional<CurlUrl> CurlUrl::resolve(const std::string& location) const {
  Handle handle(curl_url_dup(handle_.get()));
  if (handle == nullptr) {
    throw std::bad_alloc();
  }
  constexpr unsigned kLenient = CURLU_URLENCODE | CURLU_ALLOW_SPACE;
  const bool isUrl =
      curl_url_set(handle.get(), CURLUPART_URL, location.c_str(), kLenient) == CURLUE_OK;
  return isUrl ? ofHttp(std::move(handle)) : std::nullopt;
}

bool CurlUrl::hasOriginOf(const CurlUrl& other) const {
  return isHttps() == other.isHttps() && equalsInAnyCase(host(), other.host()) &&
         port() == other.port();
}

std::string CurlUrl::part(CURLUPart which, unsigned flags) const {
  return partOf(handle_.get(), which, flags);
}

std::string asciiHost(const std::string& name) {
  const auto url = isAscii(name) ? std::nullopt : CurlUrl::parse("http://" + name + "/");
  return url ? url->host() : name;
}

}  // namespace tamzo
