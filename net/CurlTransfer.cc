#include "net/CurlTransfer.h"

#include <netinet/in.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

#include "net/PublicAddress.h"

namespace tamzo {
namespace {

// A connection that was idle for longer may be gone without a word, as when a phone changes its
// network.
constexpr long kLongestIdleSeconds = 10;
// How often a transfer is looked at where nothing happens. While it connects more often: libcurl
// does not wake up when the time of one address is over and that of the next begins.
constexpr int kLongestWaitMilliseconds = 1000;
constexpr int kLongestWaitToConnect = 50;

// A callback that takes less than it was given makes libcurl give up.
constexpr std::size_t kGiveUp = 0;

// libcurl takes 0 for no limit at all.
long millisecondsOf(double seconds) noexcept {
  constexpr double kMost = std::numeric_limits<int>::max() / 2.0;
  return seconds > 0.0 ? std::lround(std::clamp(std::ceil(seconds * 1000.0), 1.0, kMost)) : 1;
}

FetchFailure failureOfCode(CURLcode code) noexcept {
  switch (code) {
    case CURLE_OK:
      return FetchFailure::none;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return FetchFailure::dns;
    case CURLE_COULDNT_CONNECT:
    case CURLE_INTERFACE_FAILED:
    case CURLE_PROXY:
    case CURLE_ABORTED_BY_CALLBACK:
      return FetchFailure::connect;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_CLIENTCERT:
      return FetchFailure::tls;
    case CURLE_OPERATION_TIMEDOUT:
      return FetchFailure::timeout;
    case CURLE_FILESIZE_EXCEEDED:
    case CURLE_OUT_OF_MEMORY:  // a line or a request beyond what libcurl takes
      return FetchFailure::tooLarge;
    case CURLE_HTTP_RETURNED_ERROR:
      return FetchFailure::status;
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_URL_MALFORMAT:
    case CURLE_WEIRD_SERVER_REPLY:
      return FetchFailure::protocol;
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
      return FetchFailure::cutOff;
    default:
      return FetchFailure::other;
  }
}

// libcurl counts in whole milliseconds.
bool hasPassed(const Deadline& deadline) noexcept {
  constexpr double kSlack = 0.002;
  return deadline.secondsLeft() < kSlack;
}

// Certificates as libcurl's build has them, without the folder: only a file's are read once for
// all.
bool hasSystemFile() noexcept {
  const char* file = curl_version_info(CURLVERSION_NOW)->cainfo;
  return file != nullptr && access(file, R_OK) == 0;
}

int portOf(const curl_sockaddr& address) noexcept {
  // Both kinds of address have it at the same place.
  static_assert(offsetof(sockaddr_in, sin_port) == offsetof(sockaddr_in6, sin6_port));
  in_port_t port = 0;
  std::memcpy(&port, reinterpret_cast<const char*>(&address.addr) + offsetof(sockaddr_in, sin_port),
              sizeof port);
  return ntohs(port);
}

}  // namespace

CurlTransfer::CurlTransfer(CurlSession& session, const FetchRequest& request, const CurlUrl& url,
                           const Deadline& deadline, FetchSpending& spent)
    : session_(session),
      easy_(session.easy()),
      request_(request),
      deadline_(deadline),
      answer_(request.limits.maxBodyBytes, spent),
      port_(url.port()) {
  setRequest(url);
  setTrust();
  setCallbacks();
}

CurlTransfer::~CurlTransfer() { curl_multi_remove_handle(session_.multi(), easy_); }

template <typename Value>
void CurlTransfer::set(CURLoption option, Value value) {
  const CURLcode code = curl_easy_setopt(easy_, option, value);
  if (code != CURLE_OK) {
    refusedOption_ = code;
  }
}

void CurlTransfer::setRequest(const CurlUrl& url) {
  const FetchOptions& options = request_.options;
  set(CURLOPT_URL, url.text().c_str());
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  // More requests at once on a connection serve nobody here, and what a server may send unasked for
  // is beyond the limits.
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  set(CURLOPT_ACCEPT_ENCODING, "");
  set(CURLOPT_FAILONERROR, 1L);
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  set(CURLOPT_MAXAGE_CONN, kLongestIdleSeconds);
#if LIBCURL_VERSION_NUM >= 0x075700
  // A name server that is silent is left to itself.
  set(CURLOPT_QUICK_EXIT, 1L);
#endif
  if (!options.userAgent.empty()) {
    set(CURLOPT_USERAGENT, options.userAgent.c_str());
  }
  if (options.proxy) {
    set(CURLOPT_PROXY, options.proxy->c_str());
  } else if (options.publicAddressesOnly) {
    set(CURLOPT_PROXY, "");
  }
  constexpr auto kMostBytes = std::numeric_limits<curl_off_t>::max();
  const std::size_t bytes = request_.limits.maxBodyBytes;
  if (bytes > 0 && bytes < static_cast<std::uint64_t>(kMostBytes)) {
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(bytes));
  }
  set(CURLOPT_TIMEOUT_MS, millisecondsOf(deadline_.secondsLeft()));
}

void CurlTransfer::setTrust() {
  if (!request_.options.caFile.empty()) {
    set(CURLOPT_CAINFO, request_.options.caFile.c_str());
    set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  } else if (hasSystemFile()) {
    set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  }
}

void CurlTransfer::setCallbacks() {
  set(CURLOPT_ERRORBUFFER, error_.data());
  set(CURLOPT_WRITEFUNCTION, &CurlTransfer::onBody);
  set(CURLOPT_WRITEDATA, this);
  set(CURLOPT_HEADERFUNCTION, &CurlTransfer::onHeader);
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_OPENSOCKETFUNCTION, &CurlTransfer::onOpen);
  set(CURLOPT_OPENSOCKETDATA, this);
  set(CURLOPT_PREREQFUNCTION, &CurlTransfer::onConnected);
  set(CURLOPT_PREREQDATA, this);
}

void CurlTransfer::addHeader(const FetchHeader& header) {
  // ";" is how libcurl takes a header of no value; ":" would leave it out.
  const std::string line =
      header.value.empty() ? header.name + ";" : header.name + ": " + header.value;
  curl_slist* longer = curl_slist_append(headers_.get(), line.c_str());
  if (longer == nullptr) {
    throw std::bad_alloc();
  }
  static_cast<void>(headers_.release());
  headers_.reset(longer);
}

void CurlTransfer::logIn(const std::string& user, const std::string& password) {
  set(CURLOPT_USERNAME, user.c_str());
  set(CURLOPT_PASSWORD, password.c_str());
}

FetchFailure CurlTransfer::perform() {
  set(CURLOPT_HTTPHEADER, headers_.get());
  limitConnecting();
  if (refusedOption_ != CURLE_OK) {
    return FetchFailure::other;
  }
  const CURLcode code = drive();
  if (ranOutOfMemory_) {
    throw std::bad_alloc();
  }
  const FetchFailure failure = failureOf(code);
  cause_ = causeOf(failure, code);
  return failure;
}

// Until something is said of it, the transfer goes on: a code comes from libcurl, or `stopped_`
// says why it was stopped.
CURLcode CurlTransfer::drive() {
  CURLM* multi = session_.multi();
  session_.endDisturbed();
  if (mustStop() || curl_multi_add_handle(multi, easy_) != CURLM_OK) {
    return CURLE_FAILED_INIT;
  }
  for (;;) {
    int running = 0;
    if (curl_multi_perform(multi, &running) != CURLM_OK) {
      return CURLE_FAILED_INIT;
    }
    int left = 0;
    const CURLMsg* message = curl_multi_info_read(multi, &left);
    if (message != nullptr && message->msg == CURLMSG_DONE) {
      return message->data.result;
    }
    if (mustStop() || curl_multi_poll(multi, nullptr, 0, longestWait(), nullptr) != CURLM_OK) {
      return CURLE_FAILED_INIT;
    }
    limitConnecting();
  }
}

// The time to connect begins when the name is resolved: a name server that is silent leaves the
// next one its chance. libcurl counts from the start, and divides what is left among the addresses.
void CurlTransfer::limitConnecting() {
  if (!hasOpened_ && !isConnected_) {
    const double passed = std::chrono::duration<double>(Clock::now() - start_).count();
    set(CURLOPT_CONNECTTIMEOUT_MS,
        millisecondsOf(passed) + millisecondsOf(request_.limits.connectSeconds));
  }
}

bool CurlTransfer::mustStop() {
  noteReceived();
  if (stopped_ == FetchFailure::none && request_.cancellation.isCancelled()) {
    stopped_ = FetchFailure::cancelled;
  }
  const bool isLate = deadline_.isPast() || (!isConnected_ && connectDeadline_.isPast());
  if (stopped_ == FetchFailure::none && isLate) {
    stopped_ = FetchFailure::timeout;
  }
  return stopped_ != FetchFailure::none;
}

int CurlTransfer::longestWait() const noexcept {
  const bool isConnecting = hasOpened_ && !isConnected_;
  const Deadline soonest = isConnecting ? deadline_.orSooner(connectDeadline_) : deadline_;
  const int longest = isConnecting ? kLongestWaitToConnect : kLongestWaitMilliseconds;
  return static_cast<int>(std::min<long>(longest, millisecondsOf(soonest.secondsLeft())));
}

void CurlTransfer::noteReceived() noexcept {
  curl_off_t received = 0;
  curl_easy_getinfo(easy_, CURLINFO_SIZE_DOWNLOAD_T, &received);
  if (!answer_.noteReceived(static_cast<std::size_t>(std::max<curl_off_t>(received, 0)))) {
    stopped_ = answer_.failure();
  }
}

FetchFailure CurlTransfer::failureOf(CURLcode code) const noexcept {
  if (stopped_ != FetchFailure::none) {
    return stopped_;
  }
  if (answer_.failure() != FetchFailure::none) {
    return answer_.failure();
  }
  // libcurl takes headers that break off for all there are.
  if (code == CURLE_OK && !answer_.hasHead()) {
    return FetchFailure::cutOff;
  }
  // Nobody reads what a redirect says besides where it leads.
  if (answer_.isRedirect() && (code == CURLE_PARTIAL_FILE || code == CURLE_BAD_CONTENT_ENCODING)) {
    return FetchFailure::none;
  }
  if (code != CURLE_OK && isRefusedByProxy()) {
    return FetchFailure::connect;
  }
  // libcurl has one code for a connection that broke and for chunks that are none.
  const bool isNoChunk =
      code == CURLE_RECV_ERROR &&
      std::string_view(error_.data()).find("chunked-encoding") != std::string_view::npos;
  return isNoChunk ? FetchFailure::protocol : failureOfCode(code);
}

FetchCause CurlTransfer::causeOf(FetchFailure failure, CURLcode code) const noexcept {
  switch (failure) {
    case FetchFailure::dns:
      return code == CURLE_COULDNT_RESOLVE_PROXY ? FetchCause::proxy : FetchCause::none;
    case FetchFailure::connect:
      return isOnlyRefused_ ? FetchCause::publicAddresses
             : isProxyToBlame() || isRefusedByProxy() || code == CURLE_PROXY ? FetchCause::proxy
                                                                             : FetchCause::none;
    case FetchFailure::tls:
      return code == CURLE_SSL_CACERT_BADFILE ? FetchCause::caFile : FetchCause::none;
    case FetchFailure::timeout:
      return isProxyToBlame()                       ? FetchCause::proxy
             : isConnected_ || hasPassed(deadline_) ? FetchCause::fetchTime
                                                    : FetchCause::connectTime;
    case FetchFailure::tooLarge:
      return answer_.failure() == failure  ? answer_.cause()
             : code == CURLE_OUT_OF_MEMORY ? FetchCause::headerSize
                                           : FetchCause::bodySize;
    default:
      return FetchCause::none;
  }
}

// Of a kind of proxy that it does not know libcurl opens nothing.
bool CurlTransfer::isProxyToBlame() const noexcept {
  const bool isUnknown = !hasOpened_ && request_.options.proxy && !request_.options.proxy->empty();
  return !isConnected_ && (isByProxy_ || isUnknown);
}

// A proxy that opens no tunnel; libcurl takes its answer for the server's.
bool CurlTransfer::isRefusedByProxy() const noexcept {
  long status = 0;
  curl_easy_getinfo(easy_, CURLINFO_HTTP_CONNECTCODE, &status);
  return status >= 300;
}

int CurlTransfer::status() const noexcept {
  long status = 0;
  curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
  return isRefusedByProxy() ? 0 : static_cast<int>(status);
}

std::optional<std::string> CurlTransfer::contentType() const {
  const char* type = nullptr;
  curl_easy_getinfo(easy_, CURLINFO_CONTENT_TYPE, &type);
  return type == nullptr ? std::nullopt : std::optional<std::string>(type);
}

double CurlTransfer::milliseconds(CURLINFO info) const noexcept {
  curl_off_t microseconds = 0;
  curl_easy_getinfo(easy_, info, &microseconds);
  return static_cast<double>(microseconds) / 1000.0;
}

void CurlTransfer::addTimes(FetchTimes& times, double before) const noexcept {
  const double resolved = milliseconds(CURLINFO_NAMELOOKUP_TIME_T);
  const double connected = milliseconds(CURLINFO_CONNECT_TIME_T);
  const double secured = milliseconds(CURLINFO_APPCONNECT_TIME_T);
  const double firstByte = milliseconds(CURLINFO_STARTTRANSFER_TIME_T);
  if (hasOpened_) {
    times.dns += resolved;
    times.connect += std::max(0.0, connected - resolved);
    times.tls += std::max(0.0, secured - connected);
  }
  times.firstByte = firstByte > 0.0 ? before + firstByte : 0.0;
}

// ---- Called by libcurl ---------------------------------------------------------------------

std::size_t CurlTransfer::handOver(Take take, std::string_view bytes) noexcept {
  try {
    return (answer_.*take)(bytes) ? bytes.size() : kGiveUp;
  } catch (const std::bad_alloc&) {
    ranOutOfMemory_ = true;
    return kGiveUp;
  }
}

std::size_t CurlTransfer::onBody(const char* bytes, std::size_t, std::size_t size,
                                 void* self) noexcept {
  return static_cast<CurlTransfer*>(self)->handOver(&FetchAnswer::takeBody, {bytes, size});
}

std::size_t CurlTransfer::onHeader(const char* line, std::size_t, std::size_t size,
                                   void* self) noexcept {
  return static_cast<CurlTransfer*>(self)->handOver(&FetchAnswer::takeHeader, {line, size});
}

curl_socket_t CurlTransfer::onOpen(void* self, curlsocktype, curl_sockaddr* address) noexcept {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  if (!transfer.hasOpened_) {
    transfer.hasOpened_ = true;
    transfer.isOnlyRefused_ = transfer.request_.options.publicAddressesOnly;
    transfer.connectDeadline_ = Deadline::in(transfer.request_.limits.connectSeconds);
  }
  if (transfer.request_.options.publicAddressesOnly && !isPublicAddress(&address->addr)) {
    return CURL_SOCKET_BAD;
  }
  transfer.isOnlyRefused_ = false;
  // libcurl says nowhere whether it is a proxy that it tries.
  transfer.isByProxy_ = portOf(*address) != transfer.port_;
  try {
    return transfer.session_.open(*address);
  } catch (const std::bad_alloc&) {
    transfer.ranOutOfMemory_ = true;
    return CURL_SOCKET_BAD;
  }
}

// On a connection that is used again nothing was opened, so that its address is looked at here.
int CurlTransfer::onConnected(void* self, char* address, char*, int, int) noexcept {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  transfer.isConnected_ = true;
  if (!transfer.hasOpened_) {
    transfer.session_.shortenPatience();
  }
  const bool isRefused = transfer.request_.options.publicAddressesOnly && !isPublicAddress(address);
  transfer.isOnlyRefused_ = isRefused;
  return isRefused ? CURL_PREREQFUNC_ABORT : CURL_PREREQFUNC_OK;
}

}  // namespace tamzo
