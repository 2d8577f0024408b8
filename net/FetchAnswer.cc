#include "net/FetchAnswer.h"

#include <algorithm>

#include "base/Ascii.h"

namespace tamzo {
namespace {

// Headers and trailers count apart from the body; no server needs more.
constexpr std::size_t kMostHeaderBytes = std::size_t{256} << 10U;
// What a body may have over the network beyond what it comes to: compression of what cannot be
// compressed. More is a body of nothing that never ends.
constexpr std::size_t kMostOverhead = std::size_t{64} << 10U;

std::string_view trimmed(std::string_view text) noexcept {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string_view::npos
             ? std::string_view()
             : text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

}  // namespace

bool FetchAnswer::takeHeader(std::string_view line) {
  spent_.headerBytes += line.size();
  if (spent_.headerBytes > kMostHeaderBytes) {
    return giveUp(FetchFailure::tooLarge, FetchCause::headerSize);
  }
  if (line.starts_with("HTTP/")) {
    begin(line);
    return true;
  }
  hasHead_ = hasHead_ || (trimmed(line).empty() && statusClass_ != '1');
  const std::size_t colon = std::min(line.find(':'), line.size());
  const std::string_view name = line.substr(0, colon);
  const std::string_view value = trimmed(line.substr(std::min(colon + 1, line.size())));
  if (statusClass_ == '3' && location_.empty() && equalsInAnyCase(name, "Location")) {
    location_ = value;
  }
  const bool tellsCodings =
      equalsInAnyCase(name, "Content-Encoding") || equalsInAnyCase(name, "Transfer-Encoding");
  return !tellsCodings || addCodings(value);
}

// There may be several: a server may send any number of 1xx first.
void FetchAnswer::begin(std::string_view statusLine) noexcept {
  const std::size_t blank = std::min(statusLine.find(' '), statusLine.size());
  const std::string_view status = trimmed(statusLine.substr(blank));
  statusClass_ = status.empty() ? '0' : status.front();
  hasHead_ = false;
  location_.clear();
  codings_ = 0;
}

// A few kilobytes coded twice become a gigabyte that nobody sees: the inner coding is of nothing.
bool FetchAnswer::addCodings(std::string_view list) noexcept {
  while (!list.empty()) {
    const std::size_t comma = std::min(list.find(','), list.size());
    const std::string_view coding = trimmed(list.substr(0, comma));
    list.remove_prefix(std::min(comma + 1, list.size()));
    const bool isPlain =
        coding.empty() || equalsInAnyCase(coding, "identity") || equalsInAnyCase(coding, "chunked");
    codings_ += isPlain ? 0 : 1;
  }
  return codings_ <= 1 || giveUp(FetchFailure::other, FetchCause::none);
}

bool FetchAnswer::takeBody(std::string_view bytes) {
  if (bytes.size() > maxBodyBytes_ - std::min(maxBodyBytes_, spent_.bodyBytes)) {
    return giveUp(FetchFailure::tooLarge, FetchCause::bodySize);
  }
  spent_.bodyBytes += bytes.size();
  if (!isRedirect()) {
    body_ += bytes;
  }
  return true;
}

bool FetchAnswer::noteReceived(std::size_t bytes) noexcept {
  spent_.receivedBytes += bytes - std::min(bytes, received_);
  received_ = std::max(received_, bytes);
  return spent_.receivedBytes / 2 <= std::max(maxBodyBytes_, kMostOverhead) ||
         giveUp(FetchFailure::tooLarge, FetchCause::bodySize);
}

}  // namespace tamzo
