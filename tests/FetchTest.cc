// The default URL reader against a real HTTP server on loopback, well-behaved and not.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/HttpServer.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using namespace std::chrono_literals;

const std::string kInline =
    "<VAST version='3.0'><Ad id='inline'><InLine><Creatives><Creative><Linear><MediaFiles>"
    "<MediaFile type='video/mp4'>u</MediaFile></MediaFiles></Linear></Creative></Creatives>"
    "</InLine></Ad></VAST>";

template <std::size_t N>
std::string bytes(const char (&literal)[N]) {
  return std::string(literal, N - 1);
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

std::string join(std::initializer_list<std::string_view> parts) {
  std::string all;
  for (const std::string_view part : parts) {
    all += part;
  }
  return all;
}

class Fetch : public SdkTest {
 protected:
  Fetch() { limit(10.0); }

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

  void redirect(const std::string& from, const std::string& to,
                const std::string& status = "302 Found") {
    server_.on(from, [=](const Exchange& exchange) {
      exchange.respond("elsewhere", status, {join({"Location: ", to})});
    });
  }

  void waitForClosing() const {
    while (!server_.isClosing()) {
      std::this_thread::sleep_for(5ms);
    }
  }

  HttpServer server_;
};

// ---- What can be read ----------------------------------------------------------------------

TEST_F(Fetch, GivesTheBodyAsItIs) {
  const std::string body = bytes("a\0\xFF\r\n \xC3\xA4");
  server_.serve("/body", body);
  EXPECT_EQ(read("/body"), body);
}

TEST_F(Fetch, AnEmptyBodyIsABody) {
  server_.serve("/empty", "");
  server_.on("/204", [](const Exchange& exchange) {
    exchange.send("HTTP/1.1 204 No Content\r\nConnection: close\r\n\r\n");
  });
  EXPECT_EQ(read("/empty"), "");
  EXPECT_EQ(read("/204"), "");
}

TEST_F(Fetch, ABodyMayEndWithTheConnectionOrComeInChunks) {
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

TEST_F(Fetch, UnpacksGzip) {
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

TEST_F(Fetch, FollowsRedirects) {
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

TEST_F(Fetch, ARedirectLoopIsGivenUp) {
  redirect("/a", "/b");
  redirect("/b", "/a");
  EXPECT_EQ(read("/a"), std::nullopt);
  EXPECT_LE(server_.requests().size(), 20U);
}

TEST_F(Fetch, ARedirectLeavesHttpNowhere) {
  const std::string path = ::testing::TempDir() + "/tamzo-fetch.xml";
  std::ofstream(path) << kInline;
  for (const std::string& target :
       {"file://" + path, std::string("ftp://127.0.0.1:1/x"), std::string("gopher://127.0.0.1:1/x"),
        std::string("data:text/xml,<a/>")}) {
    redirect("/out", target);
    EXPECT_EQ(read("/out"), std::nullopt) << target;
  }
  EXPECT_EQ(readUrl(Text("file://" + path)), std::nullopt);
  std::remove(path.c_str());
}

TEST_F(Fetch, AnErrorStatusIsNoBody) {
  for (const char* status : {"400 Bad Request", "401 Unauthorized", "404 Not Found", "410 Gone",
                             "500 Internal Server Error", "503 Service Unavailable"}) {
    server_.on("/x", [status](const Exchange& exchange) { exchange.respond(kInline, status); });
    EXPECT_EQ(read("/x"), std::nullopt) << status;
  }
  EXPECT_EQ(read("/unknown"), std::nullopt);
}

TEST_F(Fetch, APortWhereNobodyListensFails) {
  std::string url;
  {
    const HttpServer gone;
    url = gone.url("/x");
  }
  EXPECT_EQ(readUrl(Text(url)), std::nullopt);
}

TEST_F(Fetch, WhatIsNoHttpUrlIsNotAsked) {
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

TEST_F(Fetch, ABodyThatIsCutOffIsNoBody) {
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

TEST_F(Fetch, AServerThatStallsIsLeftInTime) {
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
    EXPECT_GE(took, 150ms) << path;
    EXPECT_LT(took, 3s) << path;
  }
}

TEST_F(Fetch, ABodyMayBeAsLargeAsTheLimitAndNoLarger) {
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

TEST_F(Fetch, EndlessHeadersAreGivenUp) {
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

// ---- URLs ----------------------------------------------------------------------------------

TEST_F(Fetch, AUrlIsMadeOfAnyText) {
  const std::vector<std::pair<const char*, const char*>> rows{
      {"http://a.example/b?c=d&e=f#g", "http://a.example/b?c=d&e=f#g"},
      {"http://a.example/a b", "http://a.example/a%20b"},
      {"http://a.example/%20%zz%4", "http://a.example/%20%25zz%254"},
      {"http://a.example/%", "http://a.example/%25"},
      {"http://a.example/\xC3\xA4\xE2\x82\xAC", "http://a.example/%C3%A4%E2%82%AC"},
      {"http://a.example/<>\"{}|\\^`", "http://a.example/%3C%3E%22%7B%7D%7C%5C%5E%60"},
      {"http://a.example/[MACRO]?[x]", "http://a.example/%5BMACRO%5D?%5Bx%5D"},
      {"http://[::1]:80/[x]", "http://[::1]:80/%5Bx%5D"},
      {"http://a.example/-._~!$&'()*+,;=:@", "http://a.example/-._~!$&'()*+,;=:@"},
      {"http://a.example/#a#b", "http://a.example/#a%23b"},
      {"http://a.example/a\nb\x7F", "http://a.example/a%0Ab%7F"},
      {"http", "http"},
  };
  for (const auto& [text, url] : rows) {
    EXPECT_EQ(TamzoUrlReader::urlFromText(text), Text(url)) << text;
  }
  EXPECT_TRUE(TamzoUrlReader::urlFromText("").isNil());

  const std::string longest = "http://a.example/" + std::string((1U << 20U) - 17, '[');
  EXPECT_EQ(TamzoUrlReader::urlFromText(longest).view().size(), 17 + 3 * (longest.size() - 17));
  EXPECT_TRUE(TamzoUrlReader::urlFromText(longest + "x").isNil()) << "no server takes it";
}

TEST_F(Fetch, OddCharactersOfATagAreSentEncoded) {
  const std::string sent = "/a%20b%7C%C3%A4%5BX%5D%20%25?q=%3Cx%3E&r=%22";
  server_.serve(sent, kInline);
  const auto ad =
      TamzoVastAd::initWithVast(server_.url("/a b|\xC3\xA4[X]%20%?q=<x>&r=\"#fragment"));
  EXPECT_EQ(server_.requests(), std::vector<std::string>{sent});
  EXPECT_EQ(ad->errorCode(), 0);
}

// ---- What the parser makes of it -----------------------------------------------------------

TEST_F(Fetch, BodiesEndAsTheirErrorCode) {
  struct Row {
    const char* name;
    std::string body;
    int code;
  };
  const std::vector<Row> rows{
      {"an ad", kInline, 0},
      {"nothing", "", kEmptyContent},
      {"white space", " \n", kNotXml},
      {"a page", "<html><body>no ad<br></body></html>", kNotXml},
      {"Latin-1", "<VAST version='3.0'><!-- \xE4 --></VAST>", kEmptyContent},
      {"UTF-16", bytes("\xFF\xFE<\0a\0/\0>\0"), kEmptyContent},
      {"a cut character", join({kInline, "\xE2\x82"}), kEmptyContent},
      {"a surrogate", "<VAST version='3.0'><!-- \xED\xA0\x80 --></VAST>", kEmptyContent},
      {"a byte order mark", join({"\xEF\xBB\xBF", kInline}), 0},
      {"another encoding's name", join({"<?xml version='1.0' encoding='ISO-8859-1'?>", kInline}),
       0},
      {"a NUL", join({"<VAST version='3.0'/>", bytes("\0")}), kNotXml},
      {"a URL", server_.url("/ad"), kNotXml},
  };
  for (const Row& row : rows) {
    server_.serve("/tag", row.body);
    EXPECT_EQ(TamzoVastAd::initWithVast(server_.url("/tag"))->errorCode(), row.code) << row.name;
  }
}

TEST_F(Fetch, FailedReadsEndAsEmptyContent) {
  server_.on("/never", [this](const Exchange&) { waitForClosing(); });
  redirect("/loop", "/loop");
  limit(0.2);
  for (const char* path : {"/unknown", "/never", "/loop"}) {
    const auto ad = TamzoVastAd::initWithVast(join(
        {"<VAST version='3.0'><Ad id='outer'><Wrapper><Impression>i</Impression><VASTAdTagURI>",
         server_.url(path), "</VASTAdTagURI></Wrapper></Ad></VAST>"}));
    EXPECT_EQ(ad->errorCode(), kEmptyContent) << path;
    EXPECT_EQ(ad->adID(), Text("outer")) << path;
    EXPECT_EQ(ad->vastTagURI(), Text(server_.url(path)));
  }
}

TEST_F(Fetch, AHostsReaderTakesThePlaceOfTheDefaultAndGivesItBack) {
  server_.serve("/x", "from the network");
  readUrlsWith([](const Text& url) { return join({"host ", url.view()}); });
  EXPECT_EQ(readUrl("any text"), "host any text");
  EXPECT_TRUE(server_.requests().empty());
  readUrlsWith({});
  EXPECT_EQ(read("/x"), "from the network");
}

TEST_F(Fetch, ManyThreadsMayReadAtOnce) {
  server_.serve("/x", kInline);
  std::vector<int> codes(8, -1);
  std::vector<std::thread> threads;
  for (int& code : codes) {
    threads.emplace_back([&] { code = TamzoVastAd::initWithVast(server_.url("/x"))->errorCode(); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(codes, std::vector<int>(8, 0));
  EXPECT_EQ(server_.requests().size(), 8U);
}

}  // namespace
}  // namespace tamzo::testing
