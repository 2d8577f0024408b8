#pragma once

#include <curl/curl.h>

#include <memory>
#include <optional>
#include <string>

namespace tamzo {

/// A URL of http or https in its parts, as libcurl takes them apart. A function that gives or looks
/// at a part throws std::bad_alloc.
class CurlUrl {
 public:
  /// Nothing for what is no URL, or one of another scheme. Throws std::bad_alloc.
  static std::optional<CurlUrl> parse(const std::string& text);

  /// The address of a redirect, as its Location says it; nothing as above.
  std::optional<CurlUrl> resolve(const std::string& location) const;

  /// All of it, the name of the host in ASCII.
  std::string text() const { return part(CURLUPART_URL); }
  /// In ASCII, an IPv6 address in brackets.
  std::string host() const { return part(CURLUPART_HOST); }
  /// That of the scheme where none is written.
  int port() const { return std::stoi(part(CURLUPART_PORT, CURLU_DEFAULT_PORT)); }
  bool isHttps() const { return part(CURLUPART_SCHEME) == "https"; }
  bool hasUser() const { return !part(CURLUPART_USER).empty(); }
  /// Decoded; "" when there is none.
  std::string user() const { return part(CURLUPART_USER, CURLU_URLDECODE); }
  /// As user().
  std::string password() const { return part(CURLUPART_PASSWORD, CURLU_URLDECODE); }

  /// The same scheme, host and port.
  bool hasOriginOf(const CurlUrl& other) const;

 private:
  struct Free {
    void operator()(CURLU* handle) const noexcept { curl_url_cleanup(handle); }
  };
  using Handle = std::unique_ptr<CURLU, Free>;

  explicit CurlUrl(Handle handle) noexcept : handle_(std::move(handle)) {}
  static std::optional<CurlUrl> ofHttp(Handle handle);

  std::string part(CURLUPart which, unsigned flags = 0) const;

  Handle handle_;
};

/// The name of a host in ASCII: "b\u00FCcher.example" is "xn--bcher-kva.example". What cannot be
/// converted stays. Throws std::bad_alloc.
std::string asciiHost(const std::string& name);

}  // namespace tamzo
