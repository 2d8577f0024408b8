#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tamzo/net/Fetch.h"

namespace tamzo {

/// What the answers of one fetch have taken so far, redirects included.
struct FetchSpending {
  std::size_t headerBytes = 0;
  std::size_t bodyBytes = 0;      ///< decompressed
  std::size_t receivedBytes = 0;  ///< of bodies, as they came
};

/// One answer as it arrives, watched: headers, then the body, of which a redirect's is only
/// counted.
class FetchAnswer {
 public:
  /// `spent` counts on over the answers of a fetch and must outlive this.
  FetchAnswer(std::size_t maxBodyBytes, FetchSpending& spent) noexcept
      : maxBodyBytes_(maxBodyBytes), spent_(spent) {}

  /// Takes a line of the headers, the status line and trailers included; false: it is too much, and
  /// failure() says what. Throws std::bad_alloc.
  bool takeHeader(std::string_view line);
  /// Takes a piece of the decompressed body; false and failures as above.
  bool takeBody(std::string_view bytes);
  /// Takes notice of how much of the body has come over the network; false as above.
  bool noteReceived(std::size_t bytes) noexcept;

  FetchFailure failure() const noexcept { return failure_; }
  FetchCause cause() const noexcept { return cause_; }
  /// True once the last line of the headers has come, which are not those of a 1xx.
  bool hasHead() const noexcept { return hasHead_; }
  /// True for a redirect that says where to.
  bool isRedirect() const noexcept { return !location_.empty(); }
  const std::string& location() const noexcept { return location_; }
  std::string& body() noexcept { return body_; }

 private:
  bool giveUp(FetchFailure failure, FetchCause cause) noexcept {
    failure_ = failure;
    cause_ = cause;
    return false;
  }
  void begin(std::string_view statusLine) noexcept;
  bool addCodings(std::string_view list) noexcept;

  std::size_t maxBodyBytes_;
  FetchSpending& spent_;
  std::size_t received_ = 0;
  FetchFailure failure_ = FetchFailure::none;
  FetchCause cause_ = FetchCause::none;
  char statusClass_ = '0';
  bool hasHead_ = false;
  int codings_ = 0;
  std::string location_;
  std::string body_;
};

}  // namespace tamzo
