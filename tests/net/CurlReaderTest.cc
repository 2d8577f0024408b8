// The default URL reader against a real HTTP server on loopback, well-behaved and not.

#include "net/CurlReader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/FetchFixture.h"

namespace tamzo::testing {
namespace {

using namespace std::chrono_literals;

using CurlReaderTest = FetchFixture;

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
  const std::string path = ::testing::TempDir() + "/tamzo-fetch.xml";
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
  std::string url;
  {
    const HttpServer gone;
    url = gone.url("/x");
  }
  EXPECT_EQ(readUrl(Text(url)), std::nullopt);
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

}  // namespace
}  // namespace tamzo::testing
