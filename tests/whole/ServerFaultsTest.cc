// What servers get wrong, on purpose or not. Each fault ends its ad with error 301, says which
// failure it was, takes no longer than its limits, and leaves the next fetch alone.

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/FakeNames.h"
#include "tests/support/FetchFixture.h"
#include "tests/support/Responses.h"

namespace tamzo::testing {
namespace {

using namespace std::chrono_literals;

struct Fault {
  std::string name;
  HttpServer::Handler answer;
  std::vector<FetchFailure> failures;  // one of these
};

using F = FetchFailure;

const std::string kOk = "HTTP/1.1 200 OK\r\n";

class FailureOf : public ParseObserver {
 public:
  void onHop(const Hop& hop) override {
    if (hop.fetch != nullptr) {
      failure = hop.fetch->failure;
    }
  }
  FetchFailure failure = FetchFailure::none;
};

class ServerFaultsTest : public FetchFixture {
 protected:
  ServerFaultsTest() { server_.serve("/good", inlineAd("3.0")); }

  static HttpServer::Handler raw(const std::string& text) {
    return [text](const Exchange& exchange) { exchange.send(text); };
  }
  // Sends `front`, then `piece` until the client has gone.
  HttpServer::Handler flood(const std::string& front, const std::string& piece) {
    return [this, front, piece](const Exchange& exchange) {
      exchange.send(front);
      while (!server_.isClosing() && exchange.send(piece)) {
      }
    };
  }
  HttpServer::Handler stall(const std::string& front) {
    return [this, front](const Exchange& exchange) {
      exchange.send(front);
      waitForClosing();
    };
  }
  HttpServer::Handler reset(const std::string& front) {
    return [front](const Exchange& exchange) {
      exchange.send(front);
      exchange.resetOnClose();
    };
  }

  void check(const Fault& fault) {
    SCOPED_TRACE(fault.name);
    server_.on("/fault", fault.answer);
    FailureOf observer;
    ParseOptions options;
    options.observer = &observer;
    const auto start = std::chrono::steady_clock::now();
    const auto ad = TamzoVastAd::initWithVast(
        wrapper("3.0", "<Impression>i</Impression>", server_.url("/fault")), options);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
    EXPECT_EQ(ad->errorCode(), kEmptyContent);
    EXPECT_EQ(ad->adID(), "wrapper") << "nothing is rolled back";
    bool isExpected = false;
    for (const FetchFailure each : fault.failures) {
      isExpected = isExpected || each == observer.failure;
    }
    EXPECT_TRUE(isExpected) << "failed as " << fetchFailureName(observer.failure);
    limit(30.0);  // whatever a machine that is busy needs
    EXPECT_EQ(TamzoVastAd::initWithVast(server_.url("/good"))->errorCode(), 0) << "the next fetch";
    ++checked_;
  }

  ~ServerFaultsTest() override { RecordProperty("faults", checked_); }

  int checked_ = 0;
};

TEST_F(ServerFaultsTest, AnswersThatAreCutOffAnywhere) {
  const std::string body = inlineAd("3.0");
  const std::string plain =
      kOk + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
  const std::string chunked = kOk + "Transfer-Encoding: chunked\r\n\r\n10\r\n" +
                              body.substr(0, 16) + "\r\n5\r\nabcde\r\n0\r\n\r\n";
  for (const std::string& whole : {plain, chunked}) {
    const std::size_t mostOfIt = std::min<std::size_t>(whole.size() - 5, 90);
    for (std::size_t length = 0; length < mostOfIt; ++length) {
      const std::string front = whole.substr(0, length);
      // Not yet a status line, or one that says another protocol.
      const bool isShort = length > 0 && length < kOk.size();
      const std::vector<F> failures =
          isShort ? std::vector<F>{F::cutOff, F::protocol} : std::vector<F>{F::cutOff};
      check({"cut off after " + front, raw(front), failures});
      if (length % 8 == 0) {
        check({"reset after " + front, reset(front), {F::cutOff, F::protocol}});
      }
    }
  }
}

TEST_F(ServerFaultsTest, StatusesThatAreFailures) {
  for (const int status : {400, 401, 402, 403, 404, 405, 406, 407, 408, 409, 410, 411, 412,
                           413, 414, 415, 416, 417, 421, 422, 425, 426, 428, 429, 431, 451,
                           499, 500, 501, 502, 503, 504, 505, 506, 507, 508, 510, 511, 599}) {
    check({std::to_string(status),
           [status](const Exchange& exchange) {
             exchange.respond("<VAST/>", std::to_string(status) + " No");
           },
           {F::status}});
  }
}

TEST_F(ServerFaultsTest, HeadsThatAreNoHttp) {
  const std::vector<Fault> faults{
      {"control characters", raw("\x01\x02\x03 hello\r\n"), {F::protocol}},
      {"a page at once", raw("<VAST version='3.0'/>"), {F::protocol}},
      {"another protocol", raw("SSH-2.0-OpenSSH_9.2\r\n"), {F::protocol}},
      {"a mail server", raw("220 mail.example ESMTP\r\n"), {F::protocol}},
      {"radio", raw("ICY 200 OK\r\n\r\nbody"), {F::protocol}},
      {"no version", raw("HTTP 200 OK\r\n\r\nbody"), {F::protocol}},
      {"an unknown version", raw("HTTP/7.1 200 OK\r\n\r\nbody"), {F::protocol}},
      {"no status", raw("HTTP/1.1 OK\r\n\r\nbody"), {F::protocol}},
      {"a status of two digits", raw("HTTP/1.1 20 OK\r\n\r\nbody"), {F::protocol}},
      {"a status of four digits", raw("HTTP/1.1 2000 OK\r\n\r\nbody"), {F::protocol}},
      {"a NUL in a header", raw(kOk + bytes("X: a\0b\r\n\r\nbody")), {F::protocol}},
      {"a length that is none",
       raw(kOk + "Content-Length: many\r\n\r\nbody"),
       {F::protocol, F::other}},
      {"a length below 0", raw(kOk + "Content-Length: -5\r\n\r\nbody"), {F::protocol, F::other}},
      {"a length beyond all",
       raw(kOk + "Content-Length: 99999999999999999999\r\n\r\nbody"),
       {F::tooLarge}},
      {"a length that is not kept", raw(kOk + "Content-Length: 50\r\n\r\nbody"), {F::cutOff}},
      {"no chunk at all", raw(kOk + "Transfer-Encoding: chunked\r\n\r\nno chunk"), {F::protocol}},
      {"a chunk of a size beyond all",
       raw(kOk + "Transfer-Encoding: chunked\r\n\r\nFFFFFFFFFFFFFFFFF\r\nbody"),
       {F::protocol}},
      {"a chunk that ends elsewhere",
       raw(kOk + "Transfer-Encoding: chunked\r\n\r\n3\r\nabcdef\r\n0\r\n\r\n"),
       {F::protocol}},
      {"an unknown transfer coding", raw(kOk + "Transfer-Encoding: rot13\r\n\r\nbody"), {F::other}},
  };
  for (const Fault& fault : faults) {
    check(fault);
  }
}

TEST_F(ServerFaultsTest, BodiesThatCannotBeUnpackedOrRead) {
  const std::string head = kOk + "Content-Encoding: ";
  const std::vector<Fault> faults{
      {"gzip that is none", raw(head + "gzip\r\n\r\n<VAST version='3.0'/>"), {F::other}},
      {"deflate that is none", raw(head + "deflate\r\n\r\n<VAST version='3.0'/>"), {F::other}},
      {"br that is none", raw(head + "br\r\n\r\n<VAST version='3.0'/>"), {F::other}},
      {"zstd that is none", raw(head + "zstd\r\n\r\n<VAST version='3.0'/>"), {F::other}},
      {"an unknown coding", raw(head + "rot13\r\n\r\n<VAST version='3.0'/>"), {F::other}},
      {"two codings", raw(head + "gzip, gzip\r\n\r\nx"), {F::other}},
      {"two codings in two lines",
       raw(head + "gzip\r\nContent-Encoding: gzip\r\n\r\nx"),
       {F::other}},
      {"two codings of two kinds",
       raw(head + "gzip\r\nTransfer-Encoding: gzip, chunked\r\n\r\nx"),
       {F::other}},
      {"not UTF-8", raw(kOk + "Content-Length: 1\r\n\r\n\xE4"), {F::notUtf8}},
      {"UTF-16", raw(kOk + bytes("Content-Length: 4\r\n\r\n\xFF\xFE<\0")), {F::notUtf8}},
      {"no body", raw(kOk + "Content-Length: 0\r\n\r\n"), {F::empty}},
      {"status 204", raw("HTTP/1.1 204 No Content\r\n\r\n"), {F::empty}},
      {"status 304", raw("HTTP/1.1 304 Not Modified\r\n\r\n"), {F::empty}},
  };
  for (const Fault& fault : faults) {
    check(fault);
  }
}

TEST_F(ServerFaultsTest, RedirectsThatLeadNowhere) {
  FakeNames names;
  names.add("none.test", {});
  const auto to = [](const std::string& location) {
    return [location](const Exchange& exchange) {
      exchange.respond("", "302 Found", {"Location: " + location});
    };
  };
  int step = 0;
  const std::vector<Fault> faults{
      {"to itself", to("/fault"), {F::redirects}},
      {"on and on",
       [&](const Exchange& exchange) {
         exchange.respond("", "302 Found", {"Location: /fault?" + std::to_string(++step)});
       },
       {F::status}},
      {"to a closed port", to(closedUrl()), {F::connect}},
      {"to no such host", to("http://none.test/"), {F::dns}},
      {"to no URL", to("http://a:b:c/"), {F::protocol}},
      {"to no port", to("http://127.0.0.1:99999/"), {F::protocol}},
      {"to a file", to("file:///etc/passwd"), {F::protocol}},
      {"to ftp", to("ftp://127.0.0.1/x"), {F::protocol}},
      {"to gopher", to("gopher://127.0.0.1:1/x"), {F::protocol}},
      {"to a dictionary", to("dict://127.0.0.1:1/x"), {F::protocol}},
      {"to a script", to("javascript:alert(1)"), {F::protocol}},
      {"to data", to("data:text/xml,<a/>"), {F::protocol}},
      {"to an app", to("market://details?id=1"), {F::protocol}},
      {"to nowhere", to(""), {F::empty}},
      {"without saying where", raw("HTTP/1.1 302 Found\r\nContent-Length: 0\r\n\r\n"), {F::empty}},
      {"to a page that is not there", to("/unknown"), {F::status}},
      {"to plain HTTP over TLS", to("https" + server_.url("/good").substr(4)), {F::tls}},
  };
  for (const Fault& fault : faults) {
    check(fault);
  }
}

TEST_F(ServerFaultsTest, FloodsOfEveryKind) {
  const std::string chunked = kOk + "Transfer-Encoding: chunked\r\n\r\n";
  const std::string kilobyte(1000, 'x');
  const std::vector<Fault> faults{
      {"a body", flood(kOk + "\r\n", kilobyte), {F::tooLarge}},
      {"chunks", flood(chunked, "3E8\r\n" + kilobyte + "\r\n"), {F::tooLarge}},
      {"chunks of one byte", flood(chunked, "1\r\nx\r\n1\r\nx\r\n1\r\nx\r\n"), {F::tooLarge}},
      {"a length beyond the limit", raw(kOk + "Content-Length: 200001\r\n\r\nbody"), {F::tooLarge}},
      {"headers", flood(kOk, "X-More: " + kilobyte + "\r\n"), {F::tooLarge}},
      {"short headers", flood(kOk, "a:\r\n"), {F::tooLarge}},
      {"one header", flood(kOk + "X: ", kilobyte), {F::tooLarge}},
      {"a status line", flood("HTTP/1.1 200 ", kilobyte), {F::tooLarge}},
      {"no line at all", flood("", kilobyte), {F::protocol, F::tooLarge}},
      {"100 Continue", flood("", "HTTP/1.1 100 Continue\r\n\r\n"), {F::tooLarge}},
      {"103 Early Hints", flood("", "HTTP/1.1 103 Early\r\nLink: <x>\r\n\r\n"), {F::tooLarge}},
      {"trailers",
       flood(chunked + "1\r\nx\r\n0\r\n", "X-More: " + kilobyte + "\r\n"),
       {F::tooLarge}},
      {"the body of a redirect",
       flood("HTTP/1.1 302 Found\r\nLocation: /good\r\n\r\n", kilobyte),
       {F::tooLarge}},
      {"the chunks of a redirect",
       flood("HTTP/1.1 302 Found\r\nLocation: /good\r\nTransfer-Encoding: chunked\r\n\r\n",
             "3E8\r\n" + kilobyte + "\r\n"),
       {F::tooLarge}},
      {"cookies", flood(kOk, "Set-Cookie: a=" + kilobyte + "\r\n"), {F::tooLarge}},
      {"folded headers", flood(kOk + "X: y\r\n", " " + kilobyte + "\r\n"), {F::tooLarge}},
  };
  for (const Fault& fault : faults) {
    limit(30.0, 200'000);
    check(fault);
  }
}

TEST_F(ServerFaultsTest, ServersThatStopHalfWay) {
  const std::vector<std::string> fronts{
      "",
      "H",
      "HTTP/1.1 200",
      kOk,
      kOk + "Content-Length: 10",
      kOk + "Content-Length: 10\r\n\r\n",
      kOk + "Content-Length: 10\r\n\r\nhalf",
      kOk + "\r\nhalf",
      kOk + "Transfer-Encoding: chunked\r\n\r\n",
      kOk + "Transfer-Encoding: chunked\r\n\r\n5\r\nab",
      kOk + "Transfer-Encoding: chunked\r\n\r\n2\r\nab\r\n0\r\n",
      "HTTP/1.1 100 Continue\r\n\r\n",
      "HTTP/1.1 302 Found\r\nLocation: /good\r\nContent-Length: 10\r\n\r\nhalf",
      kOk + "Content-Encoding: gzip\r\n\r\n" + bytes("\x1F\x8B\x08\x00\x00"),
  };
  for (const std::string& front : fronts) {
    limit(0.1);
    server_.on("/fault", stall(front));
    const FetchFailure failure = fetch(server_.url("/fault")).failure;
    EXPECT_EQ(fetchFailureName(failure), "timeout") << front;
    limit(30.0);
    EXPECT_EQ(fetch(server_.url("/good")).failure, F::none) << front;
  }
  limit(0.3);
  check({"a byte at a time",
         [this](const Exchange& exchange) {
           exchange.send(kOk + "\r\n");
           while (!server_.isClosing() && exchange.send("x")) {
             std::this_thread::sleep_for(1ms);
           }
         },
         {F::timeout}});
  limit(0.3, 100'000'000);
  check({"chunks that hold nothing but what nobody reads",
         flood(kOk + "Transfer-Encoding: chunked\r\n\r\n1;", std::string(10'000, 'x')),
         {F::timeout, F::tooLarge, F::protocol}});
}

TEST_F(ServerFaultsTest, ServersThatCannotSpeakTls) {
  const std::vector<std::pair<std::string, std::string>> answers{
      {"nothing", ""},
      {"plain HTTP", "HTTP/1.1 400 Bad Request\r\n\r\n"},
      {"noise", "\x01\x02\x03\x04\x05\x06\x07"},
      {"an alert", bytes("\x15\x03\x01\x00\x02\x02\x28")},
      {"half a record", bytes("\x16\x03\x03\x40\x00\x02")},
      {"a record beyond all", bytes("\x16\x03\x03\xFF\xFF\x02")},
      {"SSL 2", bytes("\x80\x04\x04\x00\x01\x00")},
  };
  for (const auto& [name, answer] : answers) {
    HttpServer server;
    server.onConnection([&answer = answer](Peer& peer) {
      peer.receive();
      peer.send(answer);
    });
    const FetchResult result = fetch("https" + server.url("/x").substr(4), trusting());
    EXPECT_EQ(fetchFailureName(result.failure), "tls") << name;
    EXPECT_EQ(result.status, 0) << name;
  }
}

}  // namespace
}  // namespace tamzo::testing
