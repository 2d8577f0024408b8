// The default URL reader against a real HTTP server on loopback, well-behaved and not.

#include "net/CurlReader.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <future>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/FakeNames.h"
#include "tests/support/FetchFixture.h"

namespace tamzo::testing {
namespace {

using namespace std::chrono_literals;

using CurlReaderTest = FetchFixture;

// A path that no other run of the tests has at the same time.
std::string ownFile(const std::string& name) {
  return join({::testing::TempDir(), "/tamzo-", std::to_string(getpid()), "-", name});
}

// "<VAST version='3.0'/>"
const std::string kGzip = bytes(
    "\x1F\x8B\x08\x00\x00\x00\x00\x00\x02\x03\xB3\x09\x73\x0C\x0E\x51\x28\x4B\x2D\x2A\xCE\xCC\xCF"
    "\xB3\x55\x37\xD6\x33\x50\xD7\xB7\x03\x00\xB8\xA4\xB5\xFD\x15\x00\x00\x00");

// The front of 100,000 times "a"; what stands between it and the end is NUL.
std::string gzipOfHundredThousand() {
  std::string packed = bytes(
      "\x1F\x8B\x08\x00\x00\x00\x00\x00\x02\x03\xED\xC1\x31\x01\x00\x00\x00\xC2\xA0\xAC\xEB\x5F"
      "\xC2\x1A\x1E\x40\x01");
  packed.resize(123, '\0');
  packed += bytes("\xAF\x06\x87\xFA\xE2\x1B\xA0\x86\x01\x00");
  return packed;
}

// ---- What can be read ----------------------------------------------------------------------

TEST_F(CurlReaderTest, GivesTheBodyAsItIs) {
  const std::string body = bytes("a\0\xFF\r\n \xC3\xA4");
  server_.serve("/body", body);
  EXPECT_EQ(read("/body"), body);
}

TEST_F(CurlReaderTest, AnEmptyBodyIsABody) {
  server_.serve("/empty", "");
  server_.on("/204", [](const Exchange& exchange) {
    exchange.send("HTTP/1.1 204 No Content\r\nConnection: close\r\n\r\n");
  });
  EXPECT_EQ(read("/empty"), "");
  EXPECT_EQ(read("/204"), "");
}

TEST_F(CurlReaderTest, ABodyMayEndWithTheConnectionOrComeInChunks) {
  server_.on("/until-close", [](const Exchange& exchange) {
    exchange.send("HTTP/1.0 200 OK\r\n\r\none");
    exchange.send("two");
  });
  server_.on("/chunks", [](const Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\none\r\n");
    exchange.send("3\r\ntwo\r\n0\r\n\r\n");
  });
  EXPECT_EQ(read("/until-close"), "onetwo");
  EXPECT_EQ(read("/chunks"), "onetwo");
}

TEST_F(CurlReaderTest, UnpacksGzip) {
  std::string head;
  server_.on("/gzip", [&head](const Exchange& exchange) {
    head = exchange.head();
    exchange.respond(kGzip, "200 OK", {"Content-Encoding: gzip"});
  });
  server_.on("/plain", [](const Exchange& exchange) { exchange.respond(kGzip); });
  server_.on("/broken", [](const Exchange& exchange) {
    exchange.respond("no gzip at all", "200 OK", {"Content-Encoding: gzip"});
  });
  EXPECT_EQ(read("/gzip"), "<VAST version='3.0'/>");
  EXPECT_NE(head.find("gzip"), std::string::npos) << "it is asked for: " << head;
  EXPECT_EQ(read("/plain"), kGzip);
  EXPECT_EQ(read("/broken"), std::nullopt);
}

TEST_F(CurlReaderTest, FollowsRedirects) {
  redirect("/1", "/2", "301 Moved Permanently");
  redirect("/2", server_.url("/3"), "302 Found");
  redirect("/3", "four", "303 See Other");
  redirect("/four", "/5?a=b", "307 Temporary Redirect");
  redirect("/5?a=b", "/6", "308 Permanent Redirect");
  server_.serve("/6", "arrived");
  EXPECT_EQ(read("/1"), "arrived");
  EXPECT_EQ(server_.requests(),
            (std::vector<std::string>{"/1", "/2", "/3", "/four", "/5?a=b", "/6"}));
}

// ---- What cannot ---------------------------------------------------------------------------

TEST_F(CurlReaderTest, ARedirectLoopIsGivenUp) {
  redirect("/a", "/b");
  redirect("/b", "/a");
  EXPECT_EQ(read("/a"), std::nullopt);
  EXPECT_LE(server_.requests().size(), 20U);
}

TEST_F(CurlReaderTest, ARedirectLeavesHttpNowhere) {
  const std::string path = ownFile("fetch.xml");
  std::ofstream(path) << "<VAST/>";
  for (const std::string& target :
       {"file://" + path, std::string("ftp://127.0.0.1:1/x"), std::string("gopher://127.0.0.1:1/x"),
        std::string("data:text/xml,<a/>")}) {
    redirect("/out", target);
    EXPECT_EQ(read("/out"), std::nullopt) << target;
  }
  EXPECT_EQ(readUrl(Text("file://" + path)), std::nullopt);
  std::remove(path.c_str());
}

TEST_F(CurlReaderTest, AnErrorStatusIsNoBody) {
  for (const char* status : {"400 Bad Request", "401 Unauthorized", "404 Not Found", "410 Gone",
                             "500 Internal Server Error", "503 Service Unavailable"}) {
    server_.on("/x", [status](const Exchange& exchange) { exchange.respond("<VAST/>", status); });
    EXPECT_EQ(read("/x"), std::nullopt) << status;
  }
  EXPECT_EQ(read("/unknown"), std::nullopt);
}

TEST_F(CurlReaderTest, APortWhereNobodyListensFails) {
  EXPECT_EQ(readUrl(Text(closedUrl())), std::nullopt);
}

TEST_F(CurlReaderTest, WhatIsNoHttpUrlIsNotAsked) {
  const std::string authority = server_.url().substr(std::string("http://").size());
  for (const std::string& url :
       {std::string(), std::string("http"), std::string("http:"), std::string("http://"),
        std::string("httpx"), "httpx://" + authority, "http:" + authority, "http" + authority,
        authority, "//" + authority, "ftp://" + authority, "httpss://" + authority}) {
    EXPECT_EQ(readUrl(Text(url)), std::nullopt) << url;
  }
  EXPECT_EQ(readUrl(Text()), std::nullopt);
  EXPECT_TRUE(server_.requests().empty());
}

TEST_F(CurlReaderTest, ABodyThatIsCutOffIsNoBody) {
  server_.on("/length", [](const Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nonly the front of it");
  });
  server_.on("/chunk", [](const Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nFF\r\nshort");
  });
  server_.on("/nothing", [](const Exchange&) {});
  server_.on("/garbage", [](const Exchange& exchange) { exchange.send("\x01\x02\x03 hello\r\n"); });
  for (const char* path : {"/length", "/chunk", "/nothing", "/garbage"}) {
    EXPECT_EQ(read(path), std::nullopt) << path;
  }
}

TEST_F(CurlReaderTest, AServerThatStallsIsLeftInTime) {
  server_.on("/never", [this](const Exchange&) { waitForClosing(); });
  server_.on("/half", [this](const Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nhalf");
    waitForClosing();
  });
  server_.on("/slow", [this](const Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\n\r\n");
    while (!server_.isClosing() && exchange.send("x")) {
      std::this_thread::sleep_for(20ms);
    }
  });
  redirect("/there", "/never");
  for (const char* path : {"/never", "/half", "/slow", "/there"}) {
    limit(0.2);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(read(path), std::nullopt) << path;
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_GE(took, 100ms) << path;
    EXPECT_LT(took, 30s) << path;
  }
}

TEST_F(CurlReaderTest, ABodyMayBeAsLargeAsTheLimitAndNoLarger) {
  limit(10.0, 10'000);
  server_.serve("/fits", std::string(10'000, 'a'));
  server_.serve("/over", std::string(10'001, 'a'));
  server_.on("/endless", [](const Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\n\r\n");
    while (exchange.send(std::string(1000, 'a'))) {
    }
  });
  server_.on("/packed", [](const Exchange& exchange) {
    exchange.respond(gzipOfHundredThousand(), "200 OK", {"Content-Encoding: gzip"});
  });
  EXPECT_EQ(read("/fits"), std::string(10'000, 'a'));
  EXPECT_EQ(read("/over"), std::nullopt);
  EXPECT_EQ(read("/endless"), std::nullopt);
  EXPECT_EQ(read("/packed"), std::nullopt) << "it is the unpacked size that counts";
  limit(10.0, 100'000);
  EXPECT_EQ(read("/packed"), std::string(100'000, 'a'));
}

TEST_F(CurlReaderTest, EndlessHeadersAreGivenUp) {
  server_.on("/headers", [&](const Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\n");
    int sent = 0;
    while (sent++ < 100'000 && exchange.send(join({"X-More: ", std::string(1000, 'x'), "\r\n"}))) {
    }
    exchange.send("Content-Length: 2\r\n\r\nok");
  });
  EXPECT_EQ(read("/headers"), std::nullopt);
  server_.on("/some", [](const Exchange& exchange) {
    exchange.respond("ok", "200 OK", {join({"X-Some: ", std::string(20'000, 'x')})});
  });
  EXPECT_EQ(read("/some"), "ok");
}

// ---- Asked directly ------------------------------------------------------------------------

TEST_F(CurlReaderTest, TheSchemeIsHttpInAnyCase) {
  server_.serve("/x", "body");
  const std::string rest = server_.url("/x").substr(std::string("http").size());
  for (const char* scheme : {"http", "HTTP", "hTtP"}) {
    EXPECT_EQ(TamzoUrlReader::read(Text(scheme + rest), {}), "body") << scheme;
  }
  // "HTTP" with a bit of each letter changed, which is no letter case.
  for (const char* scheme : {"\x08TTP", "Htt\x10", "(ttp", "https:", "httpS:"}) {
    EXPECT_EQ(TamzoUrlReader::read(Text(scheme + rest), {}), std::nullopt) << scheme;
  }
}

TEST_F(CurlReaderTest, LimitsOfNoTimeOrOfMoreThanThereIsAreTimesToo) {
  server_.serve("/x", "body");
  server_.on("/never", [this](const Exchange&) { waitForClosing(); });
  TamzoUrlReader::Limits limits;
  limits.connectSeconds = 1e300;
  limits.totalSeconds = 1e300;
  EXPECT_EQ(TamzoUrlReader::read(Text(server_.url("/x")), limits), "body");
  // To libcurl 0 would mean no limit, and the read would wait for good.
  for (const double none : {0.0, -1.0, 1e-9}) {
    limits.totalSeconds = none;
    EXPECT_EQ(TamzoUrlReader::read(Text(server_.url("/never")), limits), std::nullopt) << none;
  }
}

TEST_F(CurlReaderTest, ABodyOfNothingFitsALimitOfNothing) {
  server_.serve("/empty", "");
  server_.serve("/one", "x");
  TamzoUrlReader::Limits limits;
  limits.maxBodyBytes = 0;
  EXPECT_EQ(TamzoUrlReader::read(Text(server_.url("/empty")), limits), "");
  EXPECT_EQ(TamzoUrlReader::read(Text(server_.url("/one")), limits), std::nullopt);
}

// ---- What it says --------------------------------------------------------------------------

TEST_F(CurlReaderTest, AResultSaysWhatHappened) {
  redirect("/a", "/b", "301 Moved Permanently");
  redirect("/b", "/c?x", "307 Temporary Redirect");
  server_.on("/c?x", [](const Exchange& exchange) {
    exchange.respond(kGzip, "203 Other", {"Content-Encoding: gzip", "Content-Type: text/xml; a=b"});
  });
  const FetchResult result = fetch(server_.url("/a"));
  EXPECT_EQ(result.failure, FetchFailure::none);
  EXPECT_EQ(result.body, "<VAST version='3.0'/>");
  EXPECT_EQ(result.bytes, 21U) << "decompressed";
  EXPECT_EQ(result.status, 203);
  EXPECT_EQ(result.contentType, "text/xml; a=b");
  EXPECT_EQ(result.redirects, (std::vector<std::string>{server_.url("/b"), server_.url("/c?x")}));
  EXPECT_EQ(result.redirectStatuses, (std::vector<int>{301, 307}));
  EXPECT_EQ(result.finalUrl, server_.url("/c?x"));
  EXPECT_FALSE(result.reusedConnection);
  EXPECT_TRUE(fetch(server_.url("/c?x")).reusedConnection);
}

TEST_F(CurlReaderTest, TimesAreOfWhatHappened) {
  HttpServer secure(TestCertificates::make());
  secure.serve("/x", "body");
  FakeNames names;
  names.addSlow("a.test", 30);
  const FetchResult first = fetch(secure.urlOf("a.test", "/x"), trusting());
  EXPECT_EQ(first.status, 200);
  EXPECT_GE(first.milliseconds.dns, 25.0);
  EXPECT_GT(first.milliseconds.connect, 0.0);
  EXPECT_GT(first.milliseconds.tls, 0.0);
  EXPECT_GE(first.milliseconds.firstByte,
            first.milliseconds.dns + first.milliseconds.connect + first.milliseconds.tls);
  EXPECT_GE(first.milliseconds.total, first.milliseconds.firstByte);
  const FetchResult second = fetch(secure.urlOf("a.test", "/x"), trusting());
  EXPECT_EQ(second.milliseconds.dns, 0.0);
  EXPECT_EQ(second.milliseconds.connect, 0.0);
  EXPECT_EQ(second.milliseconds.tls, 0.0);
  EXPECT_GT(second.milliseconds.firstByte, 0.0);
}

TEST_F(CurlReaderTest, AFailureSaysWhich) {
  FakeNames names;
  names.add("none.test", {});
  server_.on("/404", [](const Exchange& exchange) { exchange.respond("page", "404 No"); });
  server_.on("/cut", [](const Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhalf");
  });
  redirect("/loop", "/loop");
  redirect("/ftp", "ftp://127.0.0.1/x");
  server_.serve("/empty", "");
  struct Row {
    std::string url;
    FetchFailure failure;
    int status;
  };
  const std::vector<Row> rows{
      {server_.urlOf("none.test"), FetchFailure::dns, 0},
      {closedUrl(), FetchFailure::connect, 0},
      {"https" + server_.url("/404").substr(4), FetchFailure::tls, 0},
      {server_.url("/404"), FetchFailure::status, 404},
      {server_.url("/cut"), FetchFailure::cutOff, 200},
      {server_.url("/loop"), FetchFailure::redirects, 302},
      {server_.url("/ftp"), FetchFailure::protocol, 302},
      {server_.url("/empty"), FetchFailure::empty, 200},
      {"ftp://127.0.0.1/", FetchFailure::protocol, 0},
      {"http://127.0.0.1:99999/", FetchFailure::protocol, 0},
      {"", FetchFailure::protocol, 0},
  };
  for (const Row& row : rows) {
    const FetchResult result = fetch(row.url);
    EXPECT_EQ(fetchFailureName(result.failure), fetchFailureName(row.failure)) << row.url;
    EXPECT_EQ(result.status, row.status) << row.url;
    EXPECT_EQ(result.finalUrl, row.url);
  }
  EXPECT_EQ(fetch(server_.url("/loop")).redirects.size(), 10U);
}

// ---- Connections ---------------------------------------------------------------------------

TEST_F(CurlReaderTest, AConnectionIsKeptForTheNextFetchWhoeverAsks) {
  server_.serve("/x", "body");
  for (int i = 0; i < 10; ++i) {
    std::thread([this] { EXPECT_EQ(read("/x"), "body"); }).join();
  }
  EXPECT_EQ(server_.connections(), 1U);
  EXPECT_EQ(server_.requests().size(), 10U);
}

TEST_F(CurlReaderTest, TwoHostsInTurnHaveAConnectionEach) {
  HttpServer other;
  server_.serve("/x", "one");
  other.serve("/x", "two");
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(fetch(server_.url("/x")).body, "one");
    EXPECT_EQ(fetch(other.url("/x")).body, "two");
  }
  EXPECT_EQ(server_.connections(), 1U);
  EXPECT_EQ(other.connections(), 1U);
}

TEST_F(CurlReaderTest, AConnectionThatTheServerClosesWhileIdleFailsNothing) {
  HttpServer secure(TestCertificates::make());
  for (HttpServer* server : {&server_, &secure}) {
    server->serve("/x", "body");
    for (int i = 0; i < 5; ++i) {
      EXPECT_EQ(fetch(server->url("/x"), trusting()).body, "body") << i;
      server->closeConnections();
    }
    EXPECT_EQ(server->connections(), 5U);
  }
}

TEST_F(CurlReaderTest, WhatAServerSendsUnaskedAnswersNoLaterFetch) {
  HttpServer secure(TestCertificates::make());
  for (HttpServer* server : {&server_, &secure}) {
    std::promise<void> isRead;
    std::promise<void> isSent;
    server->serve("/own", "its own");
    server->on("/x", [&](const Exchange& exchange) {
      exchange.respond("body");
      isRead.get_future().wait_for(30s);
      exchange.send("HTTP/1.1 200 OK\r\nContent-Length: 7\r\n\r\nunasked");
      isSent.set_value();
    });
    EXPECT_EQ(fetch(server->url("/x"), trusting()).body, "body");
    isRead.set_value();
    isSent.get_future().wait_for(30s);
    EXPECT_EQ(fetch(server->url("/own"), trusting()).body, "its own");
    EXPECT_EQ(server->connections(), 2U);
  }
}

// The server goes away at the very moment that the next request is on its way.
TEST_F(CurlReaderTest, AKeptConnectionThatIsResetIsMadeAnew) {
  int requests = 0;
  server_.on("/x", [&](const Exchange& exchange) {
    if (++requests % 2 == 0) {
      exchange.resetOnClose();
    } else {
      exchange.respond("body");
    }
  });
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(read("/x"), "body") << i;
  }
  EXPECT_EQ(server_.connections(), 4U);
}

TEST_F(CurlReaderTest, IdleConnectionsAreClosedWhenTheHostSaysSo) {
  server_.serve("/x", "body");
  read("/x");
  TamzoUrlReader::closeIdleConnections();
  TamzoUrlReader::closeIdleConnections();
  EXPECT_EQ(read("/x"), "body");
  EXPECT_EQ(server_.connections(), 2U);
}

TEST_F(CurlReaderTest, AConnectionThatWasIdleForLongIsNotUsedAgain) {
  server_.serve("/x", "body");
  EXPECT_EQ(read("/x"), "body");
  std::this_thread::sleep_for(11'500ms);
  EXPECT_EQ(read("/x"), "body");
  EXPECT_EQ(server_.connections(), 2U);
}

// The descriptor of the connection to that port, which must be there.
int socketTo(int port) {
  for (int fd = 3; fd < 1024; ++fd) {
    sockaddr_in peer{};
    socklen_t length = sizeof peer;
    if (getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &length) == 0 &&
        peer.sin_family == AF_INET && ntohs(peer.sin_port) == port) {
      return fd;
    }
  }
  ADD_FAILURE() << "no socket to port " << port;
  return -1;
}

// How long the socket to that port waits for what it sent to be acknowledged.
unsigned patienceOfSocketTo(int port) {
  unsigned milliseconds = 0;
  socklen_t length = sizeof milliseconds;
  getsockopt(socketTo(port), IPPROTO_TCP, TCP_USER_TIMEOUT, &milliseconds, &length);
  return milliseconds;
}

TEST_F(CurlReaderTest, AKeptConnectionThatLeadsNowhereIsNoticedSoon) {
  server_.serve("/x", "body");
  const int port = server_.port();
  read("/x");
  EXPECT_EQ(patienceOfSocketTo(port), 0U) << "a new one has all the time there is";
  read("/x");
  const unsigned milliseconds = patienceOfSocketTo(port);
  EXPECT_GT(milliseconds, 0U);
  EXPECT_LE(milliseconds, 5000U);
}

TEST_F(CurlReaderTest, AChildAndItsParentDoNotTalkOverOneConnection) {
  server_.serve("/x", "body");
  EXPECT_EQ(read("/x"), "body");
  const pid_t child = fork();
  if (child == 0) {
    const bool isRead = read("/x") == "body" && read("/x") == "body";
    _exit(isRead ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(server_.connections(), 2U);
  EXPECT_EQ(read("/x"), "body");
  EXPECT_EQ(server_.connections(), 2U) << "the parent's is there still";
}

TEST_F(CurlReaderTest, ASocketIsNotHandedToAProgramThatIsStarted) {
  server_.serve("/x", "body");
  read("/x");
  const int flags = fcntl(socketTo(server_.port()), F_GETFD);
  ASSERT_NE(flags, -1);
  EXPECT_NE(flags & FD_CLOEXEC, 0);
}

// ---- TLS -----------------------------------------------------------------------------------

TEST_F(CurlReaderTest, HttpsIsReadOverOneConnectionAndHttp1Alone) {
  HttpServer secure(TestCertificates::make());
  secure.serve("/x", "body");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(fetch(secure.url("/x"), trusting()).body, "body");
  }
  EXPECT_EQ(secure.handshakes(), 1U);
  EXPECT_EQ(secure.offeredProtocols(), "http/1.1");
}

TEST_F(CurlReaderTest, ABadCertificateIsRefused) {
  CertificateWanted expired;
  expired.validFrom = -7200;
  expired.validUntil = -3600;
  CertificateWanted early;
  early.validFrom = 3600;
  early.validUntil = 7200;
  CertificateWanted others;
  others.names = "DNS:other.test";
  CertificateWanted own;
  own.isSelfSigned = true;
  for (const CertificateWanted& wanted : {expired, early, others, own}) {
    HttpServer secure(TestCertificates::make(wanted));
    secure.serve("/x", "body");
    EXPECT_EQ(fetch(secure.url("/x"), trusting()).failure, FetchFailure::tls) << wanted.names;
    EXPECT_TRUE(secure.requests().empty());
  }
  HttpServer secure(TestCertificates::make());
  secure.serve("/x", "body");
  EXPECT_EQ(fetch(secure.url("/x")).failure, FetchFailure::tls)
      << "the system knows no such authority";
  EXPECT_EQ(fetch(secure.url("/x"), trusting()).body, "body");
  EXPECT_EQ(fetch(secure.url("/x")).failure, FetchFailure::tls)
      << "a connection that another trusted is not this one's";
  FetchOptions missing;
  missing.caFile = "/nonexistent.pem";
  EXPECT_EQ(fetch(secure.url("/x"), missing).failure, FetchFailure::tls);
}

TEST_F(CurlReaderTest, CertificatesAreReadOnce) {
  HttpServer secure(TestCertificates::make());
  secure.serve("/x", "body");
  FetchOptions options;
  options.caFile = ownFile("ca.pem");
  std::ofstream(options.caFile) << std::ifstream(TestCertificates::caFile()).rdbuf();
  EXPECT_EQ(fetch(secure.url("/x"), options).body, "body");
  std::ofstream(options.caFile) << "no certificate";
  secure.closeConnections();
  EXPECT_EQ(fetch(secure.url("/x"), options).body, "body");
  EXPECT_EQ(secure.handshakes(), 2U);
  std::remove(options.caFile.c_str());
}

// ---- Options -------------------------------------------------------------------------------

TEST_F(CurlReaderTest, NothingIsAddedToARequestUnlessTheHostSaysSo) {
  server_.serve("/x", "body");
  read("/x");
  const std::string head = server_.heads().at(0);
  for (const char* name : {"User-Agent", "Cookie", "Authorization", "Referer"}) {
    EXPECT_EQ(head.find(name), std::string::npos) << head;
  }
}

TEST_F(CurlReaderTest, UserAgentAndHeadersAreSent) {
  std::vector<std::optional<std::string>> values;
  server_.on("/x", [&](const Exchange& exchange) {
    values = {exchange.header("User-Agent"), exchange.header("X-App"), exchange.header("X-Empty"),
              exchange.header("Accept")};
    exchange.respond("body");
  });
  FetchOptions options;
  options.userAgent = "App/1 (Phone)";
  options.headers = {{"X-App", "a: b", {}}, {"X-Empty", "", {}}, {"Accept", "text/xml", {}}};
  EXPECT_EQ(fetch(server_.url("/x"), options).body, "body");
  using Values = std::vector<std::optional<std::string>>;
  EXPECT_EQ(values, (Values{"App/1 (Phone)", "a: b", "", "text/xml"}));
  fetch(server_.url("/x"));
  EXPECT_EQ(values, (Values{std::nullopt, std::nullopt, std::nullopt, "*/*"}))
      << "the next fetch has its own";
}

TEST_F(CurlReaderTest, WhatCannotBeSentIsRefusedAndNobodyIsAsked) {
  FetchOptions options;
  options.headers = {{"X-App", "a\r\nX-More: b", {}}};
  EXPECT_EQ(fetch(server_.url("/x"), options).failure, FetchFailure::other);
  options.headers.clear();
  options.userAgent = "a\nb";
  EXPECT_EQ(fetch(server_.url("/x"), options).failure, FetchFailure::other);
  EXPECT_EQ(server_.connections(), 0U);
}

TEST_F(CurlReaderTest, AHeaderGoesToTheHostsThatItNames) {
  FakeNames names;
  names.add("a.test");
  names.add("b.test");
  names.add("xn--bcher-kva.test");
  std::vector<std::optional<std::string>> values;
  server_.on("/x", [&](const Exchange& exchange) {
    values.push_back(exchange.header("X-Key"));
    exchange.respond("body");
  });
  redirect("/to-b", server_.urlOf("b.test", "/x"));
  FetchOptions options;
  options.headers = {{"X-Key",
                      "secret",
                      {"A.Test",
                       "b\xC3\xBC"
                       "cher.test"}}};
  for (const char* host : {"a.test", "b.test", "127.0.0.1",
                           "b\xC3\xBC"
                           "cher.test"}) {
    EXPECT_EQ(fetch(server_.urlOf(host, "/x"), options).body, "body") << host;
  }
  EXPECT_EQ(fetch(server_.urlOf("a.test", "/to-b"), options).body, "body");
  using Values = std::vector<std::optional<std::string>>;
  EXPECT_EQ(values, (Values{"secret", std::nullopt, std::nullopt, "secret", std::nullopt}));
}

TEST_F(CurlReaderTest, SecretsAreNotTakenElsewhereByARedirect) {
  FakeNames names;
  names.add("a.test");
  names.add("b.test");
  std::vector<std::string> seen;
  server_.on("/x", [&](const Exchange& exchange) {
    for (const char* name : {"Authorization", "Cookie", "X-App"}) {
      seen.push_back(exchange.header(name).value_or("-"));
    }
    exchange.respond("body");
  });
  redirect("/to-a", server_.urlOf("a.test", "/x"));
  redirect("/to-b", server_.urlOf("b.test", "/x"));
  FetchOptions options;
  options.headers = {{"Authorization", "Bearer 1", {}}, {"Cookie", "a=b", {}}, {"X-App", "1", {}}};
  fetch(server_.urlOf("a.test", "/to-a"), options);
  fetch(server_.urlOf("a.test", "/to-b"), options);
  EXPECT_EQ(seen, (std::vector<std::string>{"Bearer 1", "a=b", "1", "-", "-", "1"}));
}

TEST_F(CurlReaderTest, ANameAndPasswordAreForTheirHostAndTheirFetch) {
  FakeNames names;
  names.add("a.test");
  names.add("b.test");
  std::vector<std::string> seen;
  server_.on("/x", [&](const Exchange& exchange) {
    seen.push_back(exchange.header("Authorization").value_or("-"));
    exchange.respond("body");
  });
  redirect("/path", "/x");
  redirect("/to-a", server_.urlOf("a.test", "/x"));
  redirect("/to-b", server_.urlOf("b.test", "/x"));
  for (const char* path : {"/x", "/path", "/to-a", "/to-b"}) {
    fetch(server_.urlOf("u:p@a.test", path));
  }
  fetch(server_.urlOf("a.test", "/x"));
  const std::string login = "Basic dTpw";
  EXPECT_EQ(seen, (std::vector<std::string>{login, login, login, "-", "-"}));
  EXPECT_EQ(server_.connections(), 2U) << "over the same connections";
}

TEST_F(CurlReaderTest, HttpsMayBeHeldToHttps) {
  HttpServer secure(TestCertificates::make());
  server_.serve("/x", "body");
  secure.serve("/x", "secure");
  secure.on("/down", [this](const Exchange& exchange) {
    exchange.respond("", "302 Found", {"Location: " + server_.url("/x")});
  });
  redirect("/up", secure.url("/x"));
  FetchOptions options = trusting();
  EXPECT_EQ(fetch(secure.url("/down"), options).body, "body");
  options.httpsStaysHttps = true;
  EXPECT_EQ(fetch(secure.url("/down"), options).failure, FetchFailure::protocol);
  EXPECT_EQ(fetch(server_.url("/up"), options).body, "secure");
  EXPECT_EQ(fetch(server_.url("/x"), options).body, "body");
}

TEST_F(CurlReaderTest, ANameInAnyAlphabetIsAsked) {
  FakeNames names;
  names.add("xn--bcher-kva.test");
  std::string host;
  server_.on("/%C3%BC", [&](const Exchange& exchange) {
    host = exchange.header("Host").value_or("");
    exchange.respond("body");
  });
  for (const char* name : {"b\xC3\xBC"
                           "cher.test",
                           "b%C3%BCcher.test", "xn--bcher-kva.test"}) {
    const Text url = TamzoUrlReader::urlFromText(server_.urlOf(name, "/\xC3\xBC"));
    EXPECT_EQ(readUrl(url), "body") << name;
    EXPECT_TRUE(host.starts_with("xn--bcher-kva.test:")) << host;
  }
}

// ---- Proxies -------------------------------------------------------------------------------

// A variable of the environment, for as long as it lives.
class Environment {
 public:
  Environment(const char* name, const std::string& value) : name_(name) {
    setenv(name, value.c_str(), 1);
  }
  ~Environment() { unsetenv(name_); }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  const char* name_;
};

TEST_F(CurlReaderTest, AProxyIsThatOfTheEnvironmentOrAGivenOneOrNone) {
  HttpServer environments;
  HttpServer given;
  const std::string target = server_.url("/x");
  server_.serve("/x", "direct");
  environments.serve(target, "by the environment's");
  given.serve(target, "by the given one");
  const Environment proxy("http_proxy", environments.url());
  FetchOptions options;
  EXPECT_EQ(fetch(target, options).body, "by the environment's");
  options.proxy = given.url();
  EXPECT_EQ(fetch(target, options).body, "by the given one");
  options.proxy = "";
  EXPECT_EQ(fetch(target, options).body, "direct");
  options.proxy.reset();
  EXPECT_EQ(fetch(target, options).body, "by the environment's");
  const Environment none("no_proxy", "127.0.0.1");
  EXPECT_EQ(fetch(target, options).body, "direct");
}

TEST_F(CurlReaderTest, AProxyThatRefusesOrIsNotThereIsAFailure) {
  HttpServer proxy;
  HttpServer secure(TestCertificates::make());
  FetchOptions options = trusting();
  options.proxy = proxy.url();
  EXPECT_EQ(fetch(secure.url("/x"), options).failure, FetchFailure::connect) << "no tunnel: 404";
  options.proxy = "http://none.test:1";
  FakeNames names;
  names.add("none.test", {});
  EXPECT_EQ(fetch(server_.url("/x"), options).failure, FetchFailure::dns);
}

// ---- Public addresses only -----------------------------------------------------------------

TEST_F(CurlReaderTest, AddressesThatAreNotPublicAreRefusedHoweverTheyAreWritten) {
  server_.serve("/x", "body");
  FakeNames names;
  names.add("private.test", {"127.0.0.1"});
  names.add("metadata.test", {"169.254.169.254"});
  names.add("six.test", {"::1"});
  names.add("mapped.test", {"::ffff:127.0.0.1"});
  names.add("several.test", {"10.0.0.1", "127.0.0.1", "::1"});
  FetchOptions options;
  options.publicAddressesOnly = true;
  for (const char* host : {"127.0.0.1",
                           "[::1]",
                           "[::ffff:127.0.0.1]",
                           "[::ffff:7f00:1]",
                           "[64:ff9b::127.0.0.1]",
                           "2130706433",
                           "0x7f000001",
                           "017700000001",
                           "127.1",
                           "0",
                           "0.0.0.0",
                           "localhost",
                           "10.0.0.1",
                           "192.168.1.1",
                           "172.16.0.1",
                           "169.254.169.254",
                           "100.64.0.1",
                           "224.0.0.1",
                           "[fe80::1]",
                           "[fc00::1]",
                           "[::]",
                           "private.test",
                           "metadata.test",
                           "six.test",
                           "mapped.test",
                           "several.test"}) {
    const FetchResult result = fetch(server_.urlOf(host, "/x"), options);
    EXPECT_EQ(fetchFailureName(result.failure), "connect") << host;
  }
  EXPECT_EQ(server_.connections(), 0U);
}

TEST_F(CurlReaderTest, AConnectionThatIsThereAlreadyIsRefusedToo) {
  server_.serve("/x", "body");
  EXPECT_EQ(fetch(server_.url("/x")).body, "body");
  FetchOptions options;
  options.publicAddressesOnly = true;
  EXPECT_EQ(fetch(server_.url("/x"), options).failure, FetchFailure::connect);
  EXPECT_EQ(server_.requests().size(), 1U);
  EXPECT_EQ(fetch(server_.url("/x")).body, "body");
}

TEST_F(CurlReaderTest, NoProxyIsAskedToGetAroundThat) {
  HttpServer proxy;
  proxy.serve(server_.url("/x"), "by the proxy");
  const Environment environment("http_proxy", proxy.url());
  FetchOptions options;
  options.publicAddressesOnly = true;
  EXPECT_EQ(fetch(server_.url("/x"), options).failure, FetchFailure::connect);
  options.proxy = proxy.url();
  EXPECT_EQ(fetch(server_.url("/x"), options).failure, FetchFailure::other);
  EXPECT_EQ(proxy.connections(), 0U);
}

// ---- Cookies -------------------------------------------------------------------------------

TEST_F(CurlReaderTest, CookiesAreKeptForOneChainWhereTheHostSaysSo) {
  // Tests for cookies by redirecting to itself.
  server_.on("/x", [](const Exchange& exchange) {
    if (exchange.header("Cookie")) {
      exchange.respond(*exchange.header("Cookie"));
    } else {
      exchange.respond("", "302 Found", {"Location: /x", "Set-Cookie: id=42; Path=/"});
    }
  });
  EXPECT_EQ(fetch(server_.url("/x")).failure, FetchFailure::redirects)
      << "none are kept by default";
  FetchOptions options;
  options.cookies = true;
  FetchCookies chain;
  FetchRequest request = requestFor(server_.url("/x"), options);
  request.cookies = &chain;
  EXPECT_EQ(TamzoUrlReader::fetch(request).body, "id=42");
  EXPECT_EQ(chain.lines.size(), 1U);
  const std::size_t requests = server_.requests().size();
  EXPECT_EQ(TamzoUrlReader::fetch(request).body, "id=42");
  EXPECT_EQ(server_.requests().size(), requests + 1) << "the next hop has it already";

  FetchCookies other;
  request.cookies = &other;
  EXPECT_EQ(TamzoUrlReader::fetch(request).redirects.size(), 1U)
      << "another chain begins with none";
  EXPECT_EQ(fetch(server_.url("/x")).failure, FetchFailure::redirects);
}

}  // namespace
}  // namespace tamzo::testing
