#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "tests/support/HttpServer.h"
#include "tests/support/SdkFixture.h"
#include "tests/support/TestCertificates.h"

namespace tamzo::testing {

/// A literal that may hold NUL.
template <std::size_t N>
std::string bytes(const char (&literal)[N]) {
  return std::string(literal, N - 1);
}

inline std::string join(std::initializer_list<std::string_view> parts) {
  std::string all;
  for (const std::string_view part : parts) {
    all += part;
  }
  return all;
}

/// The default reader against a real HTTP server on loopback.
class FetchFixture : public SdkTest {
 protected:
  // No test waits for as long as that; one that is meant to end early sets a limit of its own.
  // What other tests left open is closed.
  FetchFixture() {
    TamzoUrlReader::closeIdleConnections();
    limit(60.0);
  }

  static void limit(double seconds, std::size_t maxBodyBytes = 1'000'000) {
    TamzoUrlReader::Limits limits;
    limits.connectSeconds = seconds;
    limits.totalSeconds = seconds;
    limits.maxBodyBytes = maxBodyBytes;
    limitFetches(limits);
  }

  std::optional<std::string> read(const std::string& path) const {
    return readUrl(Text(server_.url(path)));
  }

  /// A fetch with the limits of the host of the process, to begin with.
  static FetchRequest requestFor(const std::string& url, const FetchOptions& options = {}) {
    FetchRequest request;
    request.url = Text(url);
    request.limits = TamzoHost::get()->fetchLimits;
    request.options = options;
    return request;
  }
  static FetchResult fetch(const std::string& url, const FetchOptions& options = {}) {
    return TamzoUrlReader::fetch(requestFor(url, options));
  }

  /// Trusts the authority of the tests.
  static FetchOptions trusting() {
    FetchOptions options;
    options.caFile = TestCertificates::caFile();
    return options;
  }

  void redirect(const std::string& from, const std::string& to,
                const std::string& status = "302 Found") {
    server_.on(from, [=](const Exchange& exchange) {
      exchange.respond("elsewhere", status, {join({"Location: ", to})});
    });
  }

  /// A URL of a port where nobody listens.
  static std::string closedUrl(std::string_view path = "/") { return HttpServer().url(path); }

  /// For a handler that stalls.
  void waitForClosing() const {
    while (!server_.isClosing()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }

  HttpServer server_;
};

}  // namespace tamzo::testing
