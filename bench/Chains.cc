// What a chain costs over a network: names asked for, connections, handshakes, round trips, and how
// soon a cancellation ends it. A server over TLS counts, behind a link with a delay.
//
//   tamzo_bench_chains [ROUND_TRIP_MS]     the tables (50)
//   tamzo_bench_chains --hops N            N hops over https with all of the system's certificates,
//                                          each on a connection of its own, for callgrind
//   tamzo_bench_chains --kept-hops N       the same over one connection

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "bench/DelayProxy.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "tests/support/BlackHole.h"
#include "tests/support/FakeNames.h"
#include "tests/support/HttpServer.h"
#include "tests/support/Responses.h"
#include "tests/support/TestCertificates.h"

namespace tamzo::bench {
namespace {

using std::chrono::milliseconds;
using testing::BlackHole;
using testing::FakeNames;
using testing::HttpServer;
using testing::Peer;
using testing::TestCertificates;
using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

int portOf(const HttpServer& server) {
  const std::string url = server.url();
  return std::stoi(url.substr(url.rfind(':') + 1));
}

TamzoHost trusting(const std::string& caFile) {
  TamzoHost host;
  host.fetchOptions.caFile = caFile;
  return host;
}

// Two hosts behind one link, with a chain of five documents on each and one that alternates.
class Network {
 public:
  explicit Network(milliseconds roundTrip)
      : roundTrip_(roundTrip),
        server_(TestCertificates::make()),
        link_(portOf(server_), roundTrip),
        host_(trusting(TestCertificates::caFile())) {
    for (const char* name : {"a.test", "b.test"}) {
      names_.addSlow(name, static_cast<int>(roundTrip.count()));
    }
    serve("one", {"a.test"});
    serve("two", {"a.test", "b.test"});
  }

  std::string url(const std::string& chain, const std::string& host = "a.test") const {
    return at(host, "/" + chain + "/1");
  }
  const TamzoHost& host() const { return host_; }

  /// Does `work`, and prints what it took.
  void row(const char* name, const std::function<void()>& work) {
    const auto names = names_.asked().size();
    const auto handshakes = server_.handshakes();
    const int connections = link_.connections();
    const int turns = link_.turns();
    const auto start = Clock::now();
    work();
    const double took = millisecondsSince(start);
    const int made = link_.connections() - connections;
    const auto asked = names_.asked().size() - names;
    // A name and a connection take one each before the first byte goes over the link.
    const auto trips = static_cast<long>(asked) + made + (link_.turns() - turns);
    std::printf("%-34s %6zu %6d %6zu %7ld %9.0f %8.1f\n", name, asked, made,
                server_.handshakes() - handshakes, trips, took,
                took / static_cast<double>(roundTrip_.count()));
  }

 private:
  std::string at(const std::string& host, const std::string& path) const {
    return "https://" + host + ":" + std::to_string(link_.port()) + path;
  }

  void serve(const std::string& chain, const std::vector<std::string>& hosts) {
    for (std::size_t i = 1; i < 5; ++i) {
      const std::string next =
          at(hosts[i % hosts.size()], "/" + chain + "/" + std::to_string(i + 1));
      server_.serve("/" + chain + "/" + std::to_string(i), testing::wrapper("3.0", "", next));
    }
    server_.serve("/" + chain + "/5", testing::inlineAd("3.0"));
  }

  milliseconds roundTrip_;
  FakeNames names_;
  HttpServer server_;
  DelayProxy link_;
  TamzoHost host_;
};

void parse(const std::string& url, const TamzoHost& host) {
  if (TamzoVastAd::initWithVast(Text(url), host)->errorCode() != kWrapperLimit) {
    std::printf("the chain did not come to its fifth document\n");
    std::exit(1);
  }
}

void printHead(const char* what, milliseconds roundTrip) {
  std::printf("\n%s, a round trip of %d ms\n%-34s %6s %6s %6s %7s %9s %8s\n", what,
              static_cast<int>(roundTrip.count()), "", "names", "TCP", "TLS", "trips", "ms",
              "ms/trip");
}

void printChains(milliseconds roundTrip) {
  Network network(roundTrip);
  printHead("A chain of five over https", roundTrip);
  TamzoHost anew = network.host();
  anew.fetch = [](const FetchRequest& request) {
    TamzoUrlReader::closeIdleConnections();
    return TamzoUrlReader::fetch(request);
  };
  network.row("one host, every hop anew", [&] { parse(network.url("one"), anew); });
  TamzoUrlReader::closeIdleConnections();
  network.row("one host, first chain", [&] { parse(network.url("one"), network.host()); });
  network.row("one host, later chain", [&] { parse(network.url("one"), network.host()); });
  TamzoUrlReader::closeIdleConnections();
  network.row("two hosts in turn, first chain", [&] { parse(network.url("two"), network.host()); });
  network.row("two hosts in turn, later chain", [&] { parse(network.url("two"), network.host()); });
  TamzoUrlReader::closeIdleConnections();
}

void printThreads() {
  constexpr milliseconds kRoundTrip{10};
  constexpr int kThreads = 16;
  constexpr int kInputs = 500;
  Network network(kRoundTrip);
  printHead("500 chains of five to two hosts on 16 threads", kRoundTrip);
  network.row("", [&] {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&, i] {
        for (int input = i; input < kInputs; input += kThreads) {
          parse(network.url("two"), network.host());
        }
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
  });
  TamzoUrlReader::closeIdleConnections();
}

// From cancel() on one thread to the end of the fetch on another, at its longest.
double slowestCancellation(const std::string& url, const FetchOptions& options) {
  constexpr int kRounds = 10;
  double slowest = 0.0;
  for (int i = 0; i < kRounds; ++i) {
    FetchRequest request;
    request.url = Text(url);
    request.options = options;
    request.cancellation = Cancellation();
    Clock::time_point cancelled;
    std::thread canceller([&cancelled, stop = request.cancellation] {
      std::this_thread::sleep_for(milliseconds(100));
      cancelled = Clock::now();
      stop.cancel();
    });
    const FetchResult result = TamzoUrlReader::fetch(request);
    const auto end = Clock::now();
    canceller.join();
    if (result.failure != FetchFailure::cancelled) {
      std::printf("%s: not cancelled but %s\n", url.c_str(),
                  std::string(fetchFailureName(result.failure)).c_str());
      std::exit(1);
    }
    slowest = std::max(slowest, std::chrono::duration<double, std::milli>(end - cancelled).count());
  }
  return slowest;
}

void printCancellations() {
  FakeNames names;
  names.addSilent("silent.test");
  const BlackHole hole;
  HttpServer silent;
  silent.onConnection([](Peer& peer) {
    while (!peer.receive().empty()) {
    }
  });
  HttpServer server;
  const auto wait = [&server] {
    while (!server.isClosing()) {
      std::this_thread::sleep_for(milliseconds(5));
    }
  };
  server.on("/header", [&](const testing::Exchange&) { wait(); });
  server.on("/body", [&](const testing::Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhalf");
    wait();
  });
  std::printf("\nFrom a cancellation to the end of the fetch, the longest of ten, ms\n");
  const std::vector<std::pair<const char*, std::string>> states{
      {"name", server.urlOf("silent.test", "/")},
      {"connection", hole.url()},
      {"TLS", "https" + silent.url("/").substr(4)},
      {"header", server.url("/header")},
      {"body", server.url("/body")}};
  for (const auto& [state, url] : states) {
    FetchOptions options;
    options.caFile = TestCertificates::caFile();
    std::printf("%-12s %6.2f\n", state, slowestCancellation(url, options));
  }
}

// Counted by callgrind, on this thread alone.
[[gnu::noinline]] bool fetchCounted(const FetchRequest& request) {
  return TamzoUrlReader::fetch(request).body.has_value();
}

int fetchHops(int count, bool isKept) {
  HttpServer server(TestCertificates::make());
  server.on("/x", [isKept](const testing::Exchange& exchange) {
    exchange.respond(
        testing::inlineAd("3.0"), "200 OK",
        isKept ? std::vector<std::string>{} : std::vector<std::string>{"Connection: close"});
  });
  FetchRequest request;
  request.url = Text(server.url("/x"));
  request.options.caFile = TestCertificates::caFileOfAll();
  request.limits.connectSeconds = request.limits.totalSeconds = 600.0;  // valgrind is slow
  for (int i = 0; i < count; ++i) {
    if (!fetchCounted(request)) {
      std::printf("a hop failed\n");
      return 1;
    }
  }
  return 0;
}

int run(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], "--hops") == 0) {
    return fetchHops(std::atoi(argv[2]), false);
  }
  if (argc == 3 && std::strcmp(argv[1], "--kept-hops") == 0) {
    return fetchHops(std::atoi(argv[2]), true);
  }
  const milliseconds roundTrip(argc == 2 ? std::atoi(argv[1]) : 50);
  if (roundTrip.count() <= 0) {
    std::printf("usage: tamzo_bench_chains [ROUND_TRIP_MS | --hops N | --kept-hops N]\n");
    return 2;
  }
  printChains(roundTrip);
  printThreads();
  printCancellations();
  return 0;
}

}  // namespace
}  // namespace tamzo::bench

int main(int argc, char** argv) { return tamzo::bench::run(argc, argv); }
