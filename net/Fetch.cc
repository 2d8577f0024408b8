#include "tamzo/net/Fetch.h"

#include <algorithm>
#include <array>

#include "base/Ascii.h"
#include "base/PercentEncoding.h"

namespace tamzo {
namespace {

constexpr std::array<std::string_view, 14> kNames{
    "",          "dns",      "connect", "tls",      "timeout", "too-large", "status",
    "redirects", "protocol", "cut-off", "not-utf8", "empty",   "cancelled", "other"};

bool isTokenCharacter(char c) noexcept {
  return isAsciiAlphanumeric(c) ||
         std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
}

bool isToken(std::string_view text) noexcept {
  return !text.empty() && std::all_of(text.begin(), text.end(), isTokenCharacter);
}

bool isOneLine(std::string_view text) noexcept {
  return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

// What says where a request ends, how the connection goes on, or whom it is for.
bool isOfTheConnection(std::string_view name) noexcept {
  constexpr std::array<std::string_view, 10> kNamesOfConnection{
      "connection", "content-length",    "expect",          "host", "keep-alive", "te", "trailer",
      "upgrade",    "transfer-encoding", "proxy-connection"};
  return std::any_of(kNamesOfConnection.begin(), kNamesOfConnection.end(),
                     [name](std::string_view each) { return equalsInAnyCase(each, name); });
}

std::string whyRefused(const FetchHeader& header) {
  if (!isToken(header.name)) {
    return "the name of a header holds other characters than a token's";
  }
  if (isOfTheConnection(header.name)) {
    return "the header " + header.name + " belongs to the connection";
  }
  if (!isOneLine(header.value)) {
    return "the value of the header " + header.name + " holds CR, LF or NUL";
  }
  return "";
}

}  // namespace

std::string whyRefused(const FetchOptions& options) {
  if (!isOneLine(options.userAgent)) {
    return "the user agent holds CR, LF or NUL";
  }
  if (options.proxy && options.proxy->find('\0') != std::string::npos) {
    return "the proxy holds NUL";
  }
  if (options.caFile.find('\0') != std::string::npos) {
    return "the file of certificates holds NUL";
  }
  if (options.publicAddressesOnly && options.proxy && !options.proxy->empty()) {
    return "a proxy resolves names itself, so that addresses cannot be held to the public ones";
  }
  for (const FetchHeader& header : options.headers) {
    if (std::string why = whyRefused(header); !why.empty()) {
      return why;
    }
  }
  return "";
}

std::string_view fetchFailureName(FetchFailure failure) noexcept {
  return kNames[static_cast<std::size_t>(failure)];
}

}  // namespace tamzo
