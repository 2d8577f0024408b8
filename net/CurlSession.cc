#include "net/CurlSession.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>

namespace tamzo {
namespace {

// One for each host that a chain goes through and comes back to.
constexpr long kMostConnections = 8;
// Of data that nobody has acknowledged, on a connection that was idle before.
[[maybe_unused]] constexpr unsigned kUnacknowledgedMilliseconds = 3000;

bool isTcp(const curl_sockaddr& address) noexcept {
  return address.family == AF_INET || address.family == AF_INET6;
}

struct PoolOfProcess {
  pid_t process = getpid();
  const PoolOfProcess* inherited = nullptr;  // only so that it passes for no leak
  CurlSessionPool pool;
};

}  // namespace

bool initCurlOnce() {
  static const bool ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  return ready;
}

CurlSession::CurlSession() : multi_(curl_multi_init()) {
  if (multi_ == nullptr) {
    throw std::bad_alloc();
  }
  curl_multi_setopt(multi(), CURLMOPT_MAXCONNECTS, kMostConnections);
  renewEasy();
}

void CurlSession::renewEasy() {
  std::unique_ptr<CURL, FreeEasy> fresh(curl_easy_init());
  if (fresh == nullptr) {
    throw std::bad_alloc();
  }
  easy_ = std::move(fresh);
}

void CurlSession::reset() noexcept {
  curl_easy_reset(easy());
  curl_easy_setopt(easy(), CURLOPT_CLOSESOCKETFUNCTION, &CurlSession::onClose);
  curl_easy_setopt(easy(), CURLOPT_CLOSESOCKETDATA, this);
}

void CurlSession::startCookies(const std::vector<std::string>& lines) {
  // Once libcurl keeps cookies it never stops, so a handle of its own does.
  renewEasy();
  // No cookie, but cookies are kept from here on; a file's name would be forgotten by a reset.
  curl_easy_setopt(easy(), CURLOPT_COOKIELIST, "Set-Cookie: ");
  for (const std::string& line : lines) {
    curl_easy_setopt(easy(), CURLOPT_COOKIELIST, line.c_str());
  }
}

std::vector<std::string> CurlSession::takeCookies() {
  curl_slist* first = nullptr;
  curl_easy_getinfo(easy(), CURLINFO_COOKIELIST, &first);
  const std::unique_ptr<curl_slist, void (*)(curl_slist*)> list(first, curl_slist_free_all);
  std::vector<std::string> lines;
  for (const curl_slist* each = list.get(); each != nullptr; each = each->next) {
    lines.emplace_back(each->data);
  }
  renewEasy();
  return lines;
}

curl_socket_t CurlSession::open(const curl_sockaddr& address) {
  int type = address.socktype;
#ifdef SOCK_CLOEXEC
  type |= SOCK_CLOEXEC;
#endif
  sockets_.reserve(sockets_.size() + 1);
  const curl_socket_t socket = ::socket(address.family, type, address.protocol);
  if (socket == CURL_SOCKET_BAD) {
    return CURL_SOCKET_BAD;
  }
#ifndef SOCK_CLOEXEC
  fcntl(socket, F_SETFD, FD_CLOEXEC);
#endif
  if (isTcp(address)) {
    sockets_.push_back(socket);
  }
  return socket;
}

int CurlSession::onClose(void* session, curl_socket_t socket) noexcept {
  std::erase(static_cast<CurlSession*>(session)->sockets_, socket);
  return close(socket);
}

// libcurl closes those that it finds ended; some of its releases use one on which bytes wait.
void CurlSession::endDisturbed() noexcept {
  for (const curl_socket_t socket : sockets_) {
    pollfd idle{socket, POLLIN, 0};
    if (poll(&idle, 1, 0) > 0) {
      shutdown(socket, SHUT_RDWR);
    }
  }
}

void CurlSession::shortenPatience() noexcept {
#ifdef TCP_USER_TIMEOUT
  for (const curl_socket_t socket : sockets_) {
    setsockopt(socket, IPPROTO_TCP, TCP_USER_TIMEOUT, &kUnacknowledgedMilliseconds,
               sizeof kUnacknowledgedMilliseconds);
  }
#endif
}

CurlSessionPool& CurlSessionPool::ofProcess() {
  static std::atomic<PoolOfProcess*> current{nullptr};
  PoolOfProcess* known = current.load();
  if (known != nullptr && known->process == getpid()) {
    return known->pool;
  }
  // What a parent left behind stays as it is: its mutex may be held, its connections are in use.
  auto own = std::make_unique<PoolOfProcess>();
  own->inherited = known;
  if (current.compare_exchange_strong(known, own.get())) {
    return own.release()->pool;
  }
  return known->pool;
}

std::unique_ptr<CurlSession> CurlSessionPool::take(Clock::time_point now) {
  std::vector<Idle> tooOld;  // closed once the mutex is free
  {
    const std::lock_guard lock(mutex_);
    const auto kept = std::find_if(idle_.begin(), idle_.end(), [now](const Idle& each) {
      return now - each.since <= kLongestIdle;
    });
    tooOld.assign(std::make_move_iterator(idle_.begin()), std::make_move_iterator(kept));
    idle_.erase(idle_.begin(), kept);
    if (!idle_.empty()) {
      auto session = std::move(idle_.back().session);
      idle_.pop_back();
      return session;
    }
  }
  return std::make_unique<CurlSession>();
}

void CurlSessionPool::give(std::unique_ptr<CurlSession> session, Clock::time_point now) noexcept {
  std::unique_ptr<CurlSession> oldest;  // closed once the mutex is free
  const std::lock_guard lock(mutex_);
  if (idle_.size() == kMostIdle) {
    oldest = std::move(idle_.front().session);
    idle_.erase(idle_.begin());
  }
  idle_.push_back({std::move(session), now});  // there is room
}

void CurlSessionPool::clear() noexcept {
  for (;;) {
    std::unique_ptr<CurlSession> session;
    const std::lock_guard lock(mutex_);
    if (idle_.empty()) {
      return;
    }
    session = std::move(idle_.back().session);
    idle_.pop_back();
  }
}

LeasedCurlSession::~LeasedCurlSession() { pool_.give(std::move(session_)); }

}  // namespace tamzo
