#pragma once

#include <curl/curl.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace tamzo {

/// Initialises libcurl, once; false when it cannot be. May be called from any thread.
bool initCurlOnce();

/// A client of HTTP for one fetch at a time, on any thread: what it has resolved, its connections
/// and certificates are there for the next one.
class CurlSession {
 public:
  /// Throws std::bad_alloc.
  CurlSession();
  CurlSession(const CurlSession&) = delete;
  CurlSession& operator=(const CurlSession&) = delete;

  CURL* easy() const noexcept { return easy_.get(); }
  CURLM* multi() const noexcept { return multi_.get(); }

  /// Forgets every option. What came of earlier requests stays.
  void reset() noexcept;

  /// Keeps cookies from now on, these to begin with, until they are taken. Throws std::bad_alloc.
  void startCookies(const std::vector<std::string>& lines);
  /// The cookies there are, a line each. The session has none any more. Throws std::bad_alloc.
  std::vector<std::string> takeCookies();

  /// Opens a socket for libcurl, and knows of it until it is closed; CURL_SOCKET_BAD when there is
  /// none. Throws std::bad_alloc.
  curl_socket_t open(const curl_sockaddr& address);
  /// Before a fetch: ends the connections on which something came while nothing was asked, so that
  /// nothing takes it for its answer.
  void endDisturbed() noexcept;
  /// Before a connection is used again: one that a network has swallowed since fails soon enough to
  /// be made anew.
  void shortenPatience() noexcept;

 private:
  struct FreeEasy {
    void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
  };
  struct FreeMulti {
    void operator()(CURLM* handle) const noexcept { curl_multi_cleanup(handle); }
  };

  void renewEasy();
  static int onClose(void* session, curl_socket_t socket) noexcept;

  std::vector<curl_socket_t> sockets_;  // goes last: what closes them asks for it
  std::unique_ptr<CURLM, FreeMulti> multi_;
  std::unique_ptr<CURL, FreeEasy> easy_;
};

/// Idle sessions of this process, last in first out. Every function may be called from any thread.
class CurlSessionPool {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::size_t kMostIdle = 16;
  static constexpr std::chrono::seconds kLongestIdle{60};

  /// That of this process. Never destroyed: a thread may still fetch while the process ends. A
  /// child of fork() has one of its own, since both would talk over the same connections.
  static CurlSessionPool& ofProcess();

  CurlSessionPool() { idle_.reserve(kMostIdle); }

  /// The session given back last, or a new one. Closes those that were idle for longer than
  /// kLongestIdle. Throws std::bad_alloc.
  std::unique_ptr<CurlSession> take(Clock::time_point now = Clock::now());
  /// Keeps a session for the next take(). Of more than kMostIdle the oldest is closed.
  void give(std::unique_ptr<CurlSession> session, Clock::time_point now = Clock::now()) noexcept;
  /// Closes what is idle.
  void clear() noexcept;

 private:
  struct Idle {
    std::unique_ptr<CurlSession> session;
    Clock::time_point since;
  };

  std::mutex mutex_;
  std::vector<Idle> idle_;  // in the order they were given back
};

/// A session of the pool for as long as this lives.
class LeasedCurlSession {
 public:
  /// Throws std::bad_alloc.
  LeasedCurlSession() : pool_(CurlSessionPool::ofProcess()), session_(pool_.take()) {}
  ~LeasedCurlSession();
  LeasedCurlSession(const LeasedCurlSession&) = delete;
  LeasedCurlSession& operator=(const LeasedCurlSession&) = delete;

  CurlSession& operator*() const noexcept { return *session_; }
  CurlSession* operator->() const noexcept { return session_.get(); }

 private:
  CurlSessionPool& pool_;
  std::unique_ptr<CurlSession> session_;
};

}  // namespace tamzo
