#pragma once

#include <curl/curl.h>

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "net/CurlSession.h"
#include "net/CurlUrl.h"
#include "net/FetchAnswer.h"
#include "tamzo/net/Fetch.h"

namespace tamzo {

/// One request of a fetch and its answer, in a session. A redirect is told, not followed.
class CurlTransfer {
 public:
  /// `deadline` is that of the whole fetch. What is given must outlive this. Throws std::bad_alloc.
  CurlTransfer(CurlSession& session, const FetchRequest& request, const CurlUrl& url,
               const Deadline& deadline, FetchSpending& spent);
  ~CurlTransfer();
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;

  /// A header of the request. Throws std::bad_alloc.
  void addHeader(const FetchHeader& header);
  /// What is sent as Authorization.
  void logIn(const std::string& user, const std::string& password);

  /// Asks, and waits for the whole answer. None for a redirect and for an answer that can be used.
  /// Throws std::bad_alloc.
  FetchFailure perform();

  /// What exactly perform() failed at. A timeout after the connection is `fetchTime`, whoever set
  /// the deadline.
  FetchCause cause() const noexcept { return cause_; }

  FetchAnswer& answer() noexcept { return answer_; }
  /// HTTP's; 0 without an answer.
  int status() const noexcept;
  /// As the answer says it; nothing where it does not. Throws std::bad_alloc.
  std::optional<std::string> contentType() const;
  /// True when a connection had to be made.
  bool hasConnected() const noexcept { return hasOpened_; }
  /// Adds what this took; `before` milliseconds of the fetch had passed when it began.
  void addTimes(FetchTimes& times, double before) const noexcept;

 private:
  using Clock = std::chrono::steady_clock;
  using Take = bool (FetchAnswer::*)(std::string_view bytes);
  struct FreeList {
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
  };

  template <typename Value>
  void set(CURLoption option, Value value);
  void setRequest(const CurlUrl& url);
  void setTrust();
  void setCallbacks();
  void limitConnecting();
  CURLcode drive();
  bool mustStop();
  int longestWait() const noexcept;
  void noteReceived() noexcept;
  double milliseconds(CURLINFO info) const noexcept;
  FetchFailure failureOf(CURLcode code) const noexcept;
  FetchCause causeOf(FetchFailure failure, CURLcode code) const noexcept;
  bool isProxyToBlame() const noexcept;
  bool isRefusedByProxy() const noexcept;
  std::size_t handOver(Take take, std::string_view bytes) noexcept;

  // Called by libcurl.
  static std::size_t onBody(const char* bytes, std::size_t, std::size_t size, void* self) noexcept;
  static std::size_t onHeader(const char* line, std::size_t, std::size_t size, void* self) noexcept;
  static curl_socket_t onOpen(void* self, curlsocktype, curl_sockaddr* address) noexcept;
  static int onConnected(void* self, char* address, char*, int, int) noexcept;

  CurlSession& session_;
  CURL* easy_;
  const FetchRequest& request_;
  const Deadline& deadline_;
  FetchAnswer answer_;
  std::unique_ptr<curl_slist, FreeList> headers_;
  std::array<char, CURL_ERROR_SIZE> error_{};
  Clock::time_point start_ = Clock::now();
  Deadline connectDeadline_;
  CURLcode refusedOption_ = CURLE_OK;
  FetchFailure stopped_ = FetchFailure::none;
  FetchCause cause_ = FetchCause::none;
  bool ranOutOfMemory_ = false;
  bool hasOpened_ = false;
  bool isOnlyRefused_ = false;  // no address has been tried that the options allow
  bool isConnected_ = false;
  int port_;                // of the URL
  bool isByProxy_ = false;  // the port that was tried last is another
};

}  // namespace tamzo
