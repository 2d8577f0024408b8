#include "tamzo/net/TamzoUrlReader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "base/Ascii.h"
#include "base/PercentEncoding.h"
#include "net/CurlReader.h"
#include "net/FailedFetch.h"

namespace tamzo {
namespace {

// Far more than any server takes; encoded, it may become three times as long.
constexpr std::size_t kMaxUrlBytes = std::size_t{1} << 20U;

bool isHexDigit(char c) noexcept {
  return isAsciiDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Where the host and port end: brackets belong there, around an IPv6 address, and nowhere else.
std::size_t endOfAuthority(std::string_view url) noexcept {
  const std::size_t start = url.find("://");
  return start == std::string_view::npos
             ? 0
             : std::min(url.find_first_of("/?#", start + 3), url.size());
}

constexpr auto kPlainBytes = [] {
  std::array<bool, 256> plain{};
  for (std::size_t byte = 0; byte < 128; ++byte) {
    const char c = static_cast<char>(byte);
    plain[byte] = isAsciiAlphanumeric(c) ||
                  std::string_view("-._~:/?@!$&'()*+,;=").find(c) != std::string_view::npos;
  }
  return plain;
}();

// Which bytes of a text stand in a URL as they are; the others are percent-encoded.
class UrlBytes {
 public:
  explicit UrlBytes(std::string_view text) noexcept
      : text_(text), authorityEnd_(endOfAuthority(text)), fragment_(text.find('#')) {}

  bool isKept(std::size_t at) const noexcept {
    return kPlainBytes[static_cast<std::uint8_t>(text_[at])] || isKeptHere(at);
  }

 private:
  bool isKeptHere(std::size_t at) const noexcept {
    switch (text_[at]) {
      case '%':  // encoded already
        return at + 2 < text_.size() && isHexDigit(text_[at + 1]) && isHexDigit(text_[at + 2]);
      case '[':
      case ']':
        return at < authorityEnd_;
      case '#':
        return at == fragment_;
      default:
        return false;
    }
  }

  std::string_view text_;
  std::size_t authorityEnd_;
  std::size_t fragment_;
};

}  // namespace

FetchResult TamzoUrlReader::fetch(const FetchRequest& request) {
  // So written that what is no number is no time either.
  const bool hasTimeToConnect = request.limits.connectSeconds > 0.0;
  if (!hasTimeToConnect || !(request.limits.totalSeconds > 0.0)) {
    return failedFetch(request.url, FetchFailure::timeout,
                       hasTimeToConnect ? FetchCause::fetchTime : FetchCause::connectTime);
  }
  return fetchWithCurl(request);
}

std::optional<std::string> TamzoUrlReader::read(const Text& url, const Limits& limits) {
  FetchRequest request;
  request.url = url;
  request.limits = limits;
  return fetch(request).body;
}

void TamzoUrlReader::closeIdleConnections() noexcept { closeIdleCurlConnections(); }

Text TamzoUrlReader::urlFromText(std::string_view text) {
  if (text.empty() || text.size() > kMaxUrlBytes) {
    return {};
  }
  const UrlBytes bytes(text);
  std::size_t escapes = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    escapes += bytes.isKept(at) ? 0 : 1;
  }
  std::string url;
  url.reserve(text.size() + 2 * escapes);
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (bytes.isKept(at)) {
      url += text[at];
    } else {
      appendPercentEncoded(url, text[at]);
    }
  }
  return Text(std::move(url));
}

}  // namespace tamzo
