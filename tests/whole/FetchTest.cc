// What a parse makes of what the default reader brings, or does not bring.

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/FetchFixture.h"
#include "tests/support/Responses.h"

namespace tamzo::testing {
namespace {

using FetchTest = FetchFixture;

const std::string kInline = inlineAd("3.0");

TEST_F(FetchTest, OddCharactersOfATagAreSentEncoded) {
  const std::string sent = "/a%20b%7C%C3%A4%5BX%5D%20%25?q=%3Cx%3E&r=%22";
  server_.serve(sent, kInline);
  const auto ad =
      TamzoVastAd::initWithVast(server_.url("/a b|\xC3\xA4[X]%20%?q=<x>&r=\"#fragment"));
  EXPECT_EQ(server_.requests(), std::vector<std::string>{sent});
  EXPECT_EQ(ad->errorCode(), 0);
}

TEST_F(FetchTest, BodiesEndAsTheirErrorCode) {
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

TEST_F(FetchTest, FailedReadsEndAsEmptyContent) {
  server_.on("/never", [this](const Exchange&) { waitForClosing(); });
  redirect("/loop", "/loop");
  limit(0.2);
  for (const char* path : {"/unknown", "/never", "/loop"}) {
    const auto ad =
        TamzoVastAd::initWithVast(wrapper("3.0", "<Impression>i</Impression>", server_.url(path)));
    EXPECT_EQ(ad->errorCode(), kEmptyContent) << path;
    EXPECT_EQ(ad->adID(), Text("wrapper")) << path;
    EXPECT_EQ(ad->vastTagURI(), Text(server_.url(path)));
  }
}

TEST_F(FetchTest, ManyThreadsMayReadAtOnce) {
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

// ---- Chains --------------------------------------------------------------------------------

// Five documents, each behind the one before, by turns on these servers.
std::string serveChain(const std::vector<HttpServer*>& servers) {
  const auto at = [&](std::size_t i) { return servers[i % servers.size()]; };
  for (std::size_t i = 1; i < 4; ++i) {
    const std::string next = at(i + 1)->url("/" + std::to_string(i + 1));
    at(i)->serve("/" + std::to_string(i), wrapper("3.0", "", next));
  }
  at(4)->serve("/4", kInline);
  return wrapper("3.0", "", at(1)->url("/1"));
}

TEST_F(FetchTest, AChainOnOneHostTakesOneConnection) {
  const std::string response = serveChain({&server_});
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(TamzoVastAd::initWithVast(response)->errorCode(), kWrapperLimit);
  }
  EXPECT_EQ(server_.requests().size(), 12U);
  EXPECT_EQ(server_.connections(), 1U);
}

TEST_F(FetchTest, AChainBetweenTwoHostsTakesTwo) {
  HttpServer other(TestCertificates::make());
  TamzoHost host = *TamzoHost::get();
  host.fetchOptions = trusting();
  const std::string response = serveChain({&server_, &other});
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(TamzoVastAd::initWithVast(response, host)->errorCode(), kWrapperLimit);
  }
  EXPECT_EQ(server_.connections(), 1U);
  EXPECT_EQ(other.connections(), 1U);
  EXPECT_EQ(other.handshakes(), 1U);
}

TEST_F(FetchTest, AsManyConnectionsAsThreads) {
  const std::string response = serveChain({&server_});
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int j = 0; j < 5; ++j) {
        EXPECT_EQ(TamzoVastAd::initWithVast(response)->errorCode(), kWrapperLimit);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_LE(server_.connections(), 4U);
  EXPECT_EQ(server_.requests().size(), 80U);
}

TEST_F(FetchTest, CookiesGoAlongAChainAndNoFurther) {
  std::vector<std::string> seen;
  const auto note = [&](const Exchange& exchange) {
    seen.push_back(exchange.header("Cookie").value_or("-"));
  };
  server_.on("/1", [&](const Exchange& exchange) {
    note(exchange);
    exchange.respond(wrapper("3.0", "", server_.url("/2")), "200 OK", {"Set-Cookie: id=42"});
  });
  server_.on("/2", [&](const Exchange& exchange) {
    note(exchange);
    exchange.respond(kInline);
  });
  TamzoHost host = *TamzoHost::get();
  host.fetchOptions.cookies = true;
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(TamzoVastAd::initWithVast(server_.url("/1"), host)->errorCode(), 0);
  }
  EXPECT_EQ(TamzoVastAd::initWithVast(server_.url("/1"))->errorCode(), 0);
  EXPECT_EQ(seen, (std::vector<std::string>{"-", "id=42", "-", "id=42", "-", "-"}));
}

TEST_F(FetchTest, OptionsAreOfTheProcessOrOfOneParse) {
  std::vector<std::string> agents;
  server_.on("/1", [&](const Exchange& exchange) {
    agents.push_back(exchange.header("User-Agent").value_or("-"));
    exchange.respond(kInline);
  });
  TamzoHost own = *TamzoHost::get();
  own.fetchOptions.userAgent = "Own/1";
  changeHost([](TamzoHost& host) { host.fetchOptions.userAgent = "Process/1"; });
  TamzoVastAd::initWithVast(server_.url("/1"));
  TamzoVastAd::initWithVast(server_.url("/1"), own);
  TamzoVastAd::initWithVast(server_.url("/1"));
  EXPECT_EQ(agents, (std::vector<std::string>{"Process/1", "Own/1", "Process/1"}));
}

class Recorder : public ParseObserver {
 public:
  void onHop(const Hop& hop) override {
    fetches.push_back(hop.fetch == nullptr ? FetchResult() : *hop.fetch);
  }
  std::vector<FetchResult> fetches;
};

TEST_F(FetchTest, ADeadlineHoldsForTheChainNotForEachOfItsFetches) {
  for (int i = 1; i <= 5; ++i) {
    server_.on("/" + std::to_string(i), [this, i](const Exchange& exchange) {
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      exchange.respond(wrapper("3.0", "<Impression>" + std::to_string(i) + "</Impression>",
                               server_.url("/" + std::to_string(i + 1))));
    });
  }
  Recorder observer;
  ParseOptions options;
  options.observer = &observer;
  options.totalSeconds = 0.7;
  const auto start = std::chrono::steady_clock::now();
  const auto ad = TamzoVastAd::initWithVast(server_.url("/1"), options);
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(ad->errorCode(), kEmptyContent);
  EXPECT_GE(took.count(), 0.65);
  EXPECT_LT(took.count(), 20.0);
  EXPECT_EQ(observer.fetches.back().failure, FetchFailure::timeout);
  ASSERT_LE(observer.fetches.size(), 4U);
  if (observer.fetches.size() > 1) {
    EXPECT_NE(ad->trackers()->find("Impression"), nullptr) << "nothing is rolled back";
  }
}

TEST_F(FetchTest, ACancellationEndsAChain) {
  const Cancellation stop;
  server_.serve("/1", wrapper("3.0", "<Impression>1</Impression>", server_.url("/2")));
  server_.on("/2", [&](const Exchange&) {
    stop.cancel();
    waitForClosing();
  });
  Recorder observer;
  ParseOptions options;
  options.observer = &observer;
  options.cancellation = stop;
  const auto ad = TamzoVastAd::initWithVast(server_.url("/1"), options);
  EXPECT_EQ(ad->errorCode(), kEmptyContent);
  EXPECT_EQ(ad->adID(), "wrapper");
  EXPECT_EQ(observer.fetches.back().failure, FetchFailure::cancelled);
}

TEST_F(FetchTest, TheBodiesOfAChainAreBoundedTogether) {
  const std::string padding = "<!--" + std::string(40'000, 'x') + "-->";
  for (int i = 1; i <= 4; ++i) {
    server_.serve("/" + std::to_string(i),
                  wrapper("3.0", padding, server_.url("/" + std::to_string(i + 1))));
  }
  Recorder observer;
  ParseOptions options;
  options.observer = &observer;
  TamzoHost host = *TamzoHost::get();
  host.fetchLimits.maxBodyBytes = 50'000;
  host.fetchLimits.maxChainBytes = 100'000;
  options.host = &host;
  const auto ad = TamzoVastAd::initWithVast(server_.url("/1"), options);
  EXPECT_EQ(ad->errorCode(), kEmptyContent);
  ASSERT_EQ(observer.fetches.size(), 3U);
  EXPECT_EQ(observer.fetches[1].failure, FetchFailure::none);
  EXPECT_EQ(observer.fetches[2].failure, FetchFailure::tooLarge);
}

TEST_F(FetchTest, ATagBeyondWhatCanBeAskedForHasFailed) {
  // Of one letter, each of which is encoded as three, beyond what libcurl puts into a request.
  const auto encoded = TamzoVastAd::initWithVast(server_.url("/" + std::string(900'000, '[')));
  EXPECT_EQ(encoded->errorCode(), kEmptyContent);
  const auto beyond = TamzoVastAd::initWithVast(server_.url("/" + std::string(2'000'000, 'x')));
  EXPECT_EQ(beyond->errorCode(), kEmptyContent);
  EXPECT_TRUE(server_.requests().empty());
}

}  // namespace
}  // namespace tamzo::testing
