#include "explain/Words.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/Ascii.h"
#include "explain/Places.h"

namespace tamzo::explain {
namespace {

constexpr std::size_t kLongestValue = 120;

}  // namespace

std::string quoted(std::string_view value) { return '"' + shortened(value, kLongestValue) + '"'; }

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string_view hostOf(std::string_view url) noexcept {
  const std::size_t slashes = url.find("://");
  if (slashes == std::string_view::npos) {
    return {};
  }
  std::string_view host = url.substr(slashes + 3);
  host = host.substr(0, host.find_first_of("/?#\\"));
  if (const std::size_t at = host.rfind('@'); at != std::string_view::npos) {
    host.remove_prefix(at + 1);
  }
  const std::size_t bracket = host.starts_with('[') ? host.find(']') : std::string_view::npos;
  const std::size_t colon = host.find(':', bracket == std::string_view::npos ? 0 : bracket);
  return host.substr(0, colon);
}

std::string hostInWords(std::string_view url) {
  const std::string_view host = hostOf(url);
  return host.empty() ? "the server" : shortened(host, kLongestValue);
}

std::string_view originOf(const HopReport& hop) noexcept {
  const std::string_view host = hostOf(hop.url);
  return host.empty() ? nameOf(hop.source) : host;
}

std::string_view inWords(AdKind kind) noexcept {
  switch (kind) {
    case AdKind::wrapper:
      return "Wrapper";
    case AdKind::inLine:
      return "InLine";
    default:
      return "no ad";
  }
}

std::string verdictInWords(const Explanation& explanation) {
  switch (explanation.verdict) {
    case Verdict::playable:
      return "OK";
    case Verdict::failed:
      return fmt::format("FAILED {}", explanation.errorCode);
    default:
      return "NO AD, code 0";
  }
}

std::string statusInWords(const FetchResult& fetch) {
  const std::string_view failure = fetchFailureName(fetch.failure);
  const std::string status = fetch.status == 0 ? "" : std::to_string(fetch.status);
  return fmt::format("{}{}{}", status, status.empty() || failure.empty() ? "" : " ", failure);
}

std::string inSeconds(double milliseconds) {
  return milliseconds < 1000.0 ? fmt::format("{:.0f} ms", milliseconds)
                               : fmt::format("{:.1f} s", milliseconds / 1000.0);
}

bool beginsLike(std::string_view text, std::string_view beginning) noexcept {
  return text.size() >= beginning.size() &&
         equalsInAnyCase(text.substr(0, beginning.size()), beginning);
}

}  // namespace tamzo::explain
