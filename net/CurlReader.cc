#include "net/CurlReader.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/Ascii.h"
#include "net/CurlSession.h"
#include "net/CurlTransfer.h"
#include "net/CurlUrl.h"
#include "net/FailedFetch.h"
#include "net/FetchAnswer.h"

namespace tamzo {
namespace {

constexpr std::size_t kMostRedirects = 10;

// libcurl would guess a scheme where there is none.
bool hasHttpScheme(std::string_view url) noexcept {
  const std::string_view scheme = url.substr(0, std::min(url.find("://"), url.size()));
  return scheme.size() < url.size() &&
         (equalsInAnyCase(scheme, "http") || equalsInAnyCase(scheme, "https"));
}

// What tells a host who asks, and goes to nobody else by a redirect.
bool isSecret(const FetchHeader& header) noexcept {
  return equalsInAnyCase(header.name, "Authorization") || equalsInAnyCase(header.name, "Cookie");
}

bool isMeantFor(const FetchHeader& header, const std::string& host) {
  return header.hosts.empty() ||
         std::any_of(header.hosts.begin(), header.hosts.end(), [&host](const std::string& each) {
           return equalsInAnyCase(asciiHost(each), host);
         });
}

// One fetch, from redirect to redirect.
class Fetch {
 public:
  Fetch(const FetchRequest& request, const CurlUrl& url)
      : request_(request),
        first_(url),
        deadline_(Deadline::in(request.limits.totalSeconds).orSooner(request.deadline)),
        wake_(request.cancellation, [multi = session_->multi()] { curl_multi_wakeup(multi); }) {
    result_.finalUrl = request.url.view();
  }

  FetchResult run() {
    startCookies();
    result_.failure = follow();
    takeCookies();
    result_.milliseconds.total = passed();
    result_.cause = cause();
    result_.reusedConnection = result_.status != 0 && !hasConnected_;
    return std::move(result_);
  }

 private:
  using Clock = std::chrono::steady_clock;

  FetchFailure follow();
  FetchFailure redirect(const CurlUrl& from, const std::optional<CurlUrl>& to);
  FetchFailure ask(const CurlUrl& url);
  FetchCause cause() const noexcept;
  void addHeaders(CurlTransfer& transfer, const CurlUrl& url) const;
  void logIn(CurlTransfer& transfer, const CurlUrl& url) const;
  void startCookies();
  void takeCookies();

  bool keepsCookies() const noexcept {
    return request_.options.cookies && request_.cookies != nullptr;
  }
  double passed() const {
    return std::chrono::duration<double, std::milli>(Clock::now() - start_).count();
  }

  Clock::time_point start_ = Clock::now();
  LeasedCurlSession session_;
  const FetchRequest& request_;
  const CurlUrl& first_;
  Deadline deadline_;
  Cancellation::OnCancel wake_;
  FetchSpending spent_;
  std::string location_;                 // where the last answer redirects to; "": nowhere
  FetchCause cause_ = FetchCause::none;  // as far as one request can tell
  // Whether the time of the chain ends before that of the fetch.
  bool isHurriedByChain_ = request_.deadline.secondsLeft() < request_.limits.totalSeconds;
  bool hasConnected_ = false;
  FetchResult result_;
};

FetchFailure Fetch::follow() {
  FetchFailure failure = ask(first_);
  std::optional<CurlUrl> next;
  while (failure == FetchFailure::none && !location_.empty()) {
    const CurlUrl& from = next ? *next : first_;
    auto to = from.resolve(location_);
    failure = redirect(from, to);
    if (failure == FetchFailure::none) {
      next = std::move(to);
      failure = ask(*next);
    }
  }
  return failure;
}

// Where it leads, none for a redirect that may be followed.
FetchFailure Fetch::redirect(const CurlUrl& from, const std::optional<CurlUrl>& to) {
  if (result_.redirects.size() == kMostRedirects) {
    return FetchFailure::redirects;
  }
  if (!to) {
    return FetchFailure::protocol;
  }
  if (request_.options.httpsStaysHttps && from.isHttps() && !to->isHttps()) {
    cause_ = FetchCause::httpsStaysHttps;
    return FetchFailure::protocol;
  }
  result_.redirects.push_back(to->text());
  result_.redirectStatuses.push_back(result_.status);
  result_.finalUrl = result_.redirects.back();
  return FetchFailure::none;
}

FetchCause Fetch::cause() const noexcept {
  return cause_ == FetchCause::fetchTime && isHurriedByChain_ ? FetchCause::chainTime : cause_;
}

FetchFailure Fetch::ask(const CurlUrl& url) {
  session_->reset();
  const double before = passed();
  CurlTransfer transfer(*session_, request_, url, deadline_, spent_);
  addHeaders(transfer, url);
  logIn(transfer, url);
  const FetchFailure failure = transfer.perform();
  cause_ = transfer.cause();
  transfer.addTimes(result_.milliseconds, before);
  hasConnected_ |= transfer.hasConnected();
  result_.status = transfer.status();
  result_.contentType = transfer.contentType();
  location_ = transfer.answer().location();
  std::string& body = transfer.answer().body();
  result_.bytes = body.size();
  if (failure != FetchFailure::none || !location_.empty()) {
    return failure;
  }
  result_.body = std::move(body);
  return result_.body->empty() ? FetchFailure::empty : FetchFailure::none;
}

void Fetch::addHeaders(CurlTransfer& transfer, const CurlUrl& url) const {
  const std::string host = url.host();
  const bool isElsewhere = !url.hasOriginOf(first_);
  for (const FetchHeader& header : request_.options.headers) {
    if (isMeantFor(header, host) && !(isElsewhere && isSecret(header))) {
      transfer.addHeader(header);
    }
  }
}

// A name and password in the URL are for its host, wherever on it a redirect leads.
void Fetch::logIn(CurlTransfer& transfer, const CurlUrl& url) const {
  if (first_.hasUser() && !url.hasUser() && url.hasOriginOf(first_)) {
    transfer.logIn(first_.user(), first_.password());
  }
}

void Fetch::startCookies() {
  if (keepsCookies()) {
    session_->startCookies(request_.cookies->lines);
  }
}

void Fetch::takeCookies() {
  if (keepsCookies()) {
    request_.cookies->lines = session_->takeCookies();
  }
}

}  // namespace

FetchResult fetchWithCurl(const FetchRequest& request) {
  const std::string text(request.url.view());
  if (!hasHttpScheme(text)) {
    return failedFetch(request.url, FetchFailure::protocol);
  }
  if (!whyRefused(request.options).empty()) {
    return failedFetch(request.url, FetchFailure::other, FetchCause::options);
  }
  if (!initCurlOnce()) {
    return failedFetch(request.url, FetchFailure::other);
  }
  const auto url = CurlUrl::parse(text);
  return url ? Fetch(request, *url).run() : failedFetch(request.url, FetchFailure::protocol);
}

void closeIdleCurlConnections() noexcept { CurlSessionPool::ofProcess().clear(); }

}  // namespace tamzo
