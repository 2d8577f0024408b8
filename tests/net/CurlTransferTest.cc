// How long a fetch may take, and how it is stopped, whatever it waits for.

#include "net/CurlTransfer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/BlackHole.h"
#include "tests/support/FakeNames.h"
#include "tests/support/FetchFixture.h"

namespace tamzo::testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Servers that never get on, by what the client waits for.
class CurlTransferTest : public FetchFixture {
 protected:
  CurlTransferTest() {
    silent_.onConnection([](Peer& peer) {
      while (!peer.receive().empty()) {
      }
    });
    server_.on("/header", [this](const Exchange&) { waitForClosing(); });
    server_.on("/half-header", [this](const Exchange& exchange) {
      exchange.send("HTTP/1.1 200 OK\r\nContent-");
      waitForClosing();
    });
    server_.on("/body", [this](const Exchange& exchange) {
      exchange.send("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nhalf");
      waitForClosing();
    });
    server_.on("/endless", [this](const Exchange& exchange) {
      exchange.send("HTTP/1.1 200 OK\r\n\r\n");
      while (!server_.isClosing() && exchange.send("x")) {
        std::this_thread::sleep_for(1ms);
      }
    });
    redirect("/redirect", "/header");
    names_.addSilent("silent.test");
    const std::string tls = silent_.url("/").substr(std::string("http").size());
    urls_ = {{"dns", server_.urlOf("silent.test", "/")},
             {"connect", hole_.url()},
             {"tls", "https" + tls},
             {"header", server_.url("/header")},
             {"half a header", server_.url("/half-header")},
             {"body", server_.url("/body")},
             {"an endless body", server_.url("/endless")},
             {"a redirect", server_.url("/redirect")}};
  }

  FakeNames names_;
  BlackHole hole_;
  HttpServer silent_;
  std::map<std::string, std::string> urls_;
};

// Far from any limit: a machine that is busy is slow.
constexpr auto kSoon = 20s;

TEST_F(CurlTransferTest, ALimitEndsWhateverItWaitsFor) {
  for (const auto& [state, url] : urls_) {
    limit(0.2);
    const auto start = Clock::now();
    EXPECT_EQ(fetch(url).failure, FetchFailure::timeout) << state;
    EXPECT_GE(Clock::now() - start, 150ms) << state;
    EXPECT_LT(Clock::now() - start, kSoon) << state;
  }
}

TEST_F(CurlTransferTest, ADeadlineEndsItToo) {
  for (const auto& [state, url] : urls_) {
    FetchRequest request = requestFor(url);
    request.deadline = Deadline::in(0.1);
    const auto start = Clock::now();
    EXPECT_EQ(TamzoUrlReader::fetch(request).failure, FetchFailure::timeout) << state;
    EXPECT_LT(Clock::now() - start, kSoon) << state;
  }
}

TEST_F(CurlTransferTest, ACancellationFromAnotherThreadEndsItToo) {
  for (const auto& [state, url] : urls_) {
    FetchRequest request = requestFor(url);
    request.cancellation = Cancellation();
    std::thread canceller([stop = request.cancellation] {
      std::this_thread::sleep_for(100ms);
      stop.cancel();
    });
    const auto start = Clock::now();
    EXPECT_EQ(TamzoUrlReader::fetch(request).failure, FetchFailure::cancelled) << state;
    EXPECT_GE(Clock::now() - start, 50ms) << state;
    EXPECT_LT(Clock::now() - start, kSoon) << state;
    canceller.join();
  }
}

TEST_F(CurlTransferTest, NobodyIsAskedForWhatIsCancelledAlready) {
  FetchRequest request = requestFor(server_.url("/header"));
  request.cancellation = Cancellation();
  request.cancellation.cancel();
  EXPECT_EQ(TamzoUrlReader::fetch(request).failure, FetchFailure::cancelled);
  request.cancellation = Cancellation::never();
  request.deadline = Deadline::in(0.0);
  EXPECT_EQ(TamzoUrlReader::fetch(request).failure, FetchFailure::timeout);
  EXPECT_EQ(server_.connections(), 0U);
}

TEST_F(CurlTransferTest, ASessionGoesOnAfterwards) {
  server_.serve("/x", "body");
  for (const auto& [state, url] : urls_) {
    limit(0.1);
    EXPECT_EQ(fetch(url).failure, FetchFailure::timeout) << state;
    limit(60.0);
    EXPECT_EQ(fetch(server_.url("/x")).body, "body") << state;
  }
}

TEST_F(CurlTransferTest, NoTimeIsAFailureAndEndlessTimeIsNot) {
  server_.serve("/x", "body");
  FetchRequest request = requestFor(server_.url("/x"));
  for (const double none : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    request.limits = FetchLimits();
    request.limits.totalSeconds = none;
    EXPECT_EQ(TamzoUrlReader::fetch(request).failure, FetchFailure::timeout) << none;
  }
  EXPECT_EQ(server_.connections(), 0U);
  for (const double endless : {1e9, 1e300, std::numeric_limits<double>::infinity()}) {
    request.limits = FetchLimits();
    request.limits.totalSeconds = endless;
    request.limits.connectSeconds = endless;
    EXPECT_EQ(TamzoUrlReader::fetch(request).body, "body") << endless;
  }
}

// ---- Until there is a connection -----------------------------------------------------------

TEST_F(CurlTransferTest, TheTimeToConnectHasALimitOfItsOwn) {
  for (const char* state : {"connect", "tls"}) {
    for (const double seconds : {0.2, 0.0, std::numeric_limits<double>::quiet_NaN()}) {
      FetchRequest request = requestFor(urls_[state]);
      request.limits.connectSeconds = seconds;
      const auto start = Clock::now();
      EXPECT_EQ(TamzoUrlReader::fetch(request).failure, FetchFailure::timeout) << state;
      EXPECT_LT(Clock::now() - start, kSoon) << state;
    }
  }
}

// The first name server is silent, and the system asks the next one after a while.
TEST_F(CurlTransferTest, ItBeginsWhenTheNameIsResolved) {
  server_.serve("/x", "body");
  names_.addSlow("slow.test", 800);
  FetchRequest request = requestFor(server_.urlOf("slow.test", "/x"));
  request.limits.connectSeconds = 0.5;
  const FetchResult result = TamzoUrlReader::fetch(request);
  EXPECT_EQ(result.body, "body");
  EXPECT_GE(result.milliseconds.dns, 700.0);
}

TEST_F(CurlTransferTest, ItIsDividedAmongTheAddresses) {
  server_.serve("/x", "body");
  const std::string url = server_.urlOf("two.test", "/x");
  const BlackHole hole("127.0.0.2", server_.port());
  for (const int milliseconds : {0, 300}) {
    names_.addSlow("two.test", milliseconds, {"127.0.0.2", "127.0.0.1"});
    FetchRequest request = requestFor(url);
    request.limits.connectSeconds = 2.0;
    EXPECT_EQ(TamzoUrlReader::fetch(request).body, "body") << milliseconds;
    TamzoUrlReader::closeIdleConnections();
  }
}

// ---- Sizes ---------------------------------------------------------------------------------

TEST_F(CurlTransferTest, TheBodyOfARedirectCounts) {
  server_.on("/endless-redirect", [](const Exchange& exchange) {
    exchange.send("HTTP/1.1 302 Found\r\nLocation: /x\r\n\r\n");
    while (exchange.send(std::string(10'000, 'a'))) {
    }
  });
  server_.on("/long-redirect", [](const Exchange& exchange) {
    exchange.respond(std::string(60'000, 'a'), "302 Found", {"Location: /x"});
  });
  server_.serve("/x", std::string(50'000, 'a'));
  limit(60.0, 100'000);
  EXPECT_EQ(fetch(server_.url("/endless-redirect")).failure, FetchFailure::tooLarge);
  EXPECT_EQ(fetch(server_.url("/long-redirect")).failure, FetchFailure::tooLarge)
      << "both bodies together";
  limit(60.0, 110'000);
  EXPECT_EQ(fetch(server_.url("/long-redirect")).bytes, 50'000U);
}

TEST_F(CurlTransferTest, ARedirectWhoseBodyIsBrokenLeadsOnAllTheSame) {
  server_.serve("/x", "body");
  server_.on("/short", [](const Exchange& exchange) {
    exchange.send("HTTP/1.1 302 Found\r\nLocation: /x\r\nContent-Length: 100\r\n\r\nhalf");
  });
  server_.on("/packed", [](const Exchange& exchange) {
    exchange.respond("no gzip", "302 Found", {"Location: /x", "Content-Encoding: gzip"});
  });
  EXPECT_EQ(fetch(server_.url("/short")).body, "body");
  EXPECT_EQ(fetch(server_.url("/packed")).body, "body");
}

TEST_F(CurlTransferTest, ALineOrARequestBeyondAllBoundsHasFailed) {
  server_.on("/line", [](const Exchange& exchange) {
    exchange.respond("ok", "200 OK", {join({"X-Long: ", std::string(150'000, 'x')})});
  });
  const FetchResult line = fetch(server_.url("/line"));
  EXPECT_EQ(line.failure, FetchFailure::tooLarge);
  EXPECT_EQ(line.body, std::nullopt);
  EXPECT_EQ(fetch(server_.url("/" + std::string(2'000'000, 'x'))).failure, FetchFailure::tooLarge);
}

TEST_F(CurlTransferTest, ALengthBeyondTheLimitIsNotWaitedFor) {
  server_.on("/long", [this](const Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\nContent-Length: 1000001\r\n\r\n");
    waitForClosing();
  });
  EXPECT_EQ(fetch(server_.url("/long")).failure, FetchFailure::tooLarge);
}

// Each block of a gzip body may be empty, and there may be any number of them.
TEST_F(CurlTransferTest, ABodyOfNothingEndsToo) {
  server_.on("/nothing", [](const Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n");
    exchange.send(bytes("\x1F\x8B\x08\x00\x00\x00\x00\x00\x02\x03"));
    std::string blocks;
    for (int i = 0; i < 10'000; ++i) {
      blocks += bytes("\x00\x00\x00\xFF\xFF");
    }
    while (exchange.send(blocks)) {
    }
  });
  EXPECT_EQ(fetch(server_.url("/nothing")).failure, FetchFailure::tooLarge);
}

}  // namespace
}  // namespace tamzo::testing
