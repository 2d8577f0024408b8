#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"
#include "tamzo/net/Cancellation.h"
#include "tamzo/net/Deadline.h"

namespace tamzo {

/// Why a fetch failed.
enum class FetchFailure : std::uint8_t {
  none,       ///< it did not
  dns,        ///< no such host, or no name server that says so
  connect,    ///< no connection, or none that the options allow
  tls,        ///< no TLS, or a certificate that is none for this host
  timeout,    ///< a limit of time passed, in whatever state
  tooLarge,   ///< a limit of size passed: of a body, a header, or all bodies of a chain
  status,     ///< HTTP status 400 or above
  redirects,  ///< more than ten of them
  protocol,   ///< no http or https URL, no HTTP that can be read, or a redirect to something else
  cutOff,     ///< the connection ended before the answer was whole, also before its first byte
  notUtf8,    ///< a body that is not UTF-8
  empty,      ///< a body of no bytes
  cancelled,  ///< the host has cancelled it
  other,      ///< anything else: a broken compression, no memory, options that cannot be sent
};

/// What a fetch failed at, where its failure alone does not say that; `none` from a host's reader
/// that does not tell.
enum class FetchCause : std::uint8_t {
  none,             ///< the failure says it all
  publicAddresses,  ///< `connect`: every address was refused by FetchOptions::publicAddressesOnly
  httpsStaysHttps,  ///< `protocol`: a redirect was refused by FetchOptions::httpsStaysHttps
  proxy,            ///< `dns`, `connect` or `timeout`: there is no such proxy, or it opens no way
  caFile,           ///< `tls`: FetchOptions::caFile cannot be used
  connectTime,      ///< `timeout`: FetchLimits::connectSeconds passed
  fetchTime,        ///< `timeout`: FetchLimits::totalSeconds passed
  chainTime,        ///< `timeout`: the deadline of the chain passed
  headerSize,       ///< `tooLarge`: the headers of all answers, which no option allows more of
  bodySize,         ///< `tooLarge`: FetchLimits::maxBodyBytes
  chainSize,        ///< `tooLarge`: FetchLimits::maxChainBytes
  options,          ///< `other`: FetchOptions cannot be sent, as whyRefused() tells
};

/// "dns", "connect", "tls", "timeout", "too-large", "status", "redirects", "protocol", "cut-off",
/// "not-utf8", "empty", "cancelled" or "other"; "" for none.
TAMZO_EXPORT std::string_view fetchFailureName(FetchFailure failure) noexcept;

/// What one fetch may take, and what a whole chain.
///
/// A limit of time that is NaN, 0 or less leaves no time, and the fetch fails as `timeout`;
/// infinity is no limit.
struct FetchLimits {
  /// Until there is a connection, TLS included, once the name of the host is resolved.
  double connectSeconds = 5.0;
  /// The whole fetch: name, connection, redirects and body.
  double totalSeconds = 15.0;
  /// One body, after decompression; the bodies of the redirects before it count too.
  std::size_t maxBodyBytes = std::size_t{16} << 20U;
  /// All fetches of a chain of Wrappers together, from the start of its parse.
  double chainSeconds = std::numeric_limits<double>::infinity();
  /// All bodies of a chain. Less than `maxBodyBytes` counts as that.
  std::size_t maxChainBytes = std::size_t{32} << 20U;
  /// All documents of a chain, in nodes of their trees: an element is one, an attribute two, texts
  /// are none; a node takes about a hundred bytes. The first document may have any number. One that
  /// goes beyond is not read: error 101.
  std::size_t maxChainNodes = 5'000'000;
};

/// Times of a fetch in milliseconds; 0 where it did not happen, as on a connection that was there.
struct FetchTimes {
  double dns = 0.0;        ///< to resolve names, over all redirects
  double connect = 0.0;    ///< to connect, without TLS, over all redirects
  double tls = 0.0;        ///< for TLS handshakes, over all redirects
  double firstByte = 0.0;  ///< from the start to the first byte of the last answer
  double total = 0.0;      ///< from the start to the end
};

/// What came of a fetch.
struct FetchResult {
  /// The bytes; nothing when it failed, save for `empty` ("") and `notUtf8` (as they came).
  std::optional<std::string> body;
  FetchFailure failure = FetchFailure::none;  ///< none: it went well
  int status = 0;                             ///< HTTP's, of the last answer; 0: there was none
  std::string finalUrl;                       ///< what was asked for last
  std::vector<std::string> redirects;      ///< the addresses redirected to; the last is `finalUrl`
  std::vector<int> redirectStatuses;       ///< HTTP's status for each of those
  std::size_t bytes = 0;                   ///< of the last body, decompressed, as far as it came
  std::optional<std::string> contentType;  ///< Content-Type of the last answer, as sent
  FetchTimes milliseconds;                 ///< how long it took
  bool reusedConnection = false;           ///< true: no connection had to be made
  FetchCause cause = FetchCause::none;     ///< what exactly it failed at
};

/// A header that an app adds to its requests.
struct FetchHeader {
  std::string name;   ///< a token as HTTP means it
  std::string value;  ///< any bytes but CR, LF and NUL
  /// The hosts that get it, without port, in any letter case; every host that is asked when empty.
  /// Authorization and Cookie are not taken to another origin by a redirect even then.
  std::vector<std::string> hosts;
};

/// How an app wants its requests made. The defaults add nothing.
struct FetchOptions {
  /// Sent as User-Agent; "": none is sent.
  std::string userAgent;
  /// Sent with each request.
  std::vector<FetchHeader> headers;
  /// Nothing: what the environment says (http_proxy, https_proxy, no_proxy). "": none. Otherwise a
  /// proxy's URL.
  std::optional<std::string> proxy;
  /// A file of certificates in PEM, to be trusted in place of the system's; "": the system's.
  std::string caFile;
  /// Refuses addresses that are not of the public Internet, whatever name or redirect leads there:
  /// loopback, private, link-local, shared and multicast ones, and those behind the IPv6 prefixes
  /// that hold an IPv4 address. No proxy of the environment is used then, and a given one fails: it
  /// would resolve names itself.
  bool publicAddressesOnly = false;
  /// Refuses a redirect from https to http.
  bool httpsStaysHttps = false;
  /// Keeps cookies for the redirects and Wrappers of one chain, and no longer.
  bool cookies = false;
};

/// Why options cannot be sent, in one sentence for people; "" when they can. A fetch with options
/// that cannot be sent fails as `other`.
TAMZO_EXPORT std::string whyRefused(const FetchOptions& options);

/// The cookies of one chain, a line each in the form of Netscape's cookie files.
struct FetchCookies {
  std::vector<std::string> lines;  ///< in no order
};

/// What to fetch, and within which bounds.
struct FetchRequest {
  Text url;                                           ///< escaped, as TamzoUrlReader::urlFromText()
  FetchLimits limits;                                 ///< of this fetch
  Deadline deadline;                                  ///< when the whole chain has to be done
  Cancellation cancellation = Cancellation::never();  ///< when the host wants no more of it
  FetchOptions options;                               ///< how requests are made
  int hop = 1;                      ///< which document of the chain, 1 for the first
  FetchCookies* cookies = nullptr;  ///< of the chain, read and written; null: none are kept
};

}  // namespace tamzo
