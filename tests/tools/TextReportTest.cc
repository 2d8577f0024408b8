#include "tools/TextReport.h"

#include <functional>
#include <string>
#include <vector>

#include "explain/Explainer.h"
#include "tests/support/BlackHole.h"
#include "tests/support/FakeNames.h"
#include "tests/support/FetchFixture.h"
#include "tests/support/Responses.h"

namespace tamzo::testing {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

// The time that a report tells behind these words. How much more than its limit a fetch takes is
// the machine's affair.
double millisecondsAfter(const std::string& words, const std::string& report) {
  const std::size_t at = report.find(words);
  if (at == std::string::npos) {
    ADD_FAILURE() << "no \"" << words << "\" in " << report;
    return 0.0;
  }
  const std::string rest = report.substr(at + words.size());
  std::size_t length = 0;
  const double number = std::stod(rest, &length);
  return rest.substr(length).starts_with(" ms") ? number : number * 1000.0;
}

// What people read of a tag that cannot be fetched, with the default reader and a real server.
class TextReportTest : public FetchFixture {
 protected:
  TextReportTest() {
    server_.on("/silent", [this](const Exchange&) { waitForClosing(); });
    names_.add("gone.example", {});
    names_.add("here.example", {"127.0.0.1"});
  }

  std::string reportOf(const std::string& response, const ParseOptions& with = {}) const {
    explain::Explainer explainer;
    ParseOptions options = with;
    options.observer = &explainer;
    const auto ad = TamzoVastAd::initWithVast(Text(response), options);
    return command::textReport(*ad, explainer.explain(*ad), {});
  }

  static void setLimits(const std::function<void(FetchLimits&)>& change) {
    changeHost([&](TamzoHost& host) { change(host.fetchLimits); });
  }
  static void setOptions(const FetchOptions& options) {
    changeHost([&](TamzoHost& host) { host.fetchOptions = options; });
  }
  static FetchOptions through(const std::string& proxy) {
    FetchOptions options;
    options.proxy = proxy;
    return options;
  }

  std::string wrapperTo(const std::string& path) const {
    return "<VAST version='4.0'><Ad id='w'><Wrapper><VASTAdTagURI>" + server_.url(path) +
           "</VASTAdTagURI></Wrapper></Ad></VAST>";
  }

  FakeNames names_;
};

TEST_F(TextReportTest, ANameThatNobodyKnows) {
  const std::string report = reportOf("http://gone.example/");
  EXPECT_THAT(report, HasSubstr("There is no host named gone.example"));
  EXPECT_THAT(report, HasSubstr("correct the host"));
  EXPECT_THAT(report, ContainsRegex("\n  no connection in [0-9]+\\.[0-9] s"));
  setOptions(through("http://gone.example:1"));
  EXPECT_THAT(reportOf("http://here.example/"), HasSubstr("There is no proxy of the name"));
}

TEST_F(TextReportTest, AConnectionThatIsRefused) {
  const std::string report = reportOf(closedUrl());
  EXPECT_THAT(report, HasSubstr("127.0.0.1 takes no connection"));
  EXPECT_THAT(report, HasSubstr("is it up"));
  EXPECT_THAT(report, ContainsRegex("\n  no connection in [0-9]+\\.[0-9] s"));
  EXPECT_THAT(report, Not(HasSubstr("connected in")));
  EXPECT_THAT(report, Not(HasSubstr("first byte")));
}

TEST_F(TextReportTest, AProxyThatIsDownIsNotTheServersFault) {
  setOptions(through(closedUrl()));
  const std::string report = reportOf("http://here.example/");
  EXPECT_THAT(report, HasSubstr("The proxy opens no way to here.example"));
  EXPECT_THAT(report, HasSubstr("Correct --proxy"));
  setOptions(through("nonsense://p.example"));
  EXPECT_THAT(reportOf("http://here.example/"), HasSubstr("The proxy opens no way"));
  const BlackHole hole;
  setLimits([](FetchLimits& limits) { limits.connectSeconds = 0.2; });
  setOptions(through(hole.url()));
  EXPECT_THAT(reportOf("http://here.example/"), HasSubstr("The proxy opened no way"));
}

TEST_F(TextReportTest, AnAddressThatIsNotPublic) {
  server_.serve("/ad", "x");
  FetchOptions options;
  options.publicAddressesOnly = true;
  setOptions(options);
  for (const std::string& url : {server_.url("/ad"), server_.urlOf("here.example", "/ad")}) {
    const std::string report = reportOf(url);
    EXPECT_THAT(report, HasSubstr("has no public address, and --public-only refuses"));
    EXPECT_THAT(report, HasSubstr("leave --public-only out"));
    EXPECT_THAT(report, Not(HasSubstr("is it up")));
    EXPECT_THAT(report, ContainsRegex("\n  no connection in [0-9]+\\.[0-9] s"));
  }
  EXPECT_TRUE(server_.requests().empty());
}

TEST_F(TextReportTest, AProxyThatOpensNoWay) {
  setOptions(through(server_.url()));
  const std::string report = reportOf("https://here.example/");
  EXPECT_THAT(report, HasSubstr("The proxy opens no way to here.example"));
  EXPECT_THAT(report, HasSubstr("Correct --proxy"));
}

TEST_F(TextReportTest, AServerThatIsNotTrusted) {
  HttpServer secure(TestCertificates::make());
  const std::string report = reportOf(secure.url("/ad"));
  EXPECT_THAT(report, HasSubstr("No secure connection to 127.0.0.1 could be made"));
  EXPECT_THAT(report, HasSubstr("look at its certificate"));
  EXPECT_THAT(report, ContainsRegex("no secure connection in [0-9]+\\.[0-9] s"));
  FetchOptions options;
  options.caFile = "/dev/null/none.pem";
  setOptions(options);
  EXPECT_THAT(reportOf(secure.url("/ad")), HasSubstr("Give --ca a file of certificates in PEM."));
}

TEST_F(TextReportTest, TheTimeOfAFetchPasses) {
  limit(1.0);
  const std::string report = reportOf(server_.url("/silent"));
  EXPECT_GE(millisecondsAfter("127.0.0.1 did not answer within ", report), 1000.0);
  EXPECT_THAT(report, HasSubstr("Try a longer --timeout"));
  EXPECT_THAT(report, Not(HasSubstr("--total-timeout")));
  EXPECT_THAT(report, HasSubstr("\n  connected in "));
  EXPECT_THAT(report, ContainsRegex(", no answer in [0-9]+\\.[0-9] s"));
  EXPECT_THAT(report, Not(HasSubstr("first byte")));
}

TEST_F(TextReportTest, TheTimeOfTheChainPasses) {
  setLimits([](FetchLimits& limits) { limits.chainSeconds = 0.3; });
  const std::string report = reportOf(wrapperTo("/silent"));
  EXPECT_THAT(report, HasSubstr("all that was left of the time for the chain"));
  EXPECT_THAT(report, HasSubstr("Try a longer --total-timeout"));
  EXPECT_THAT(report, Not(HasSubstr("longer --timeout")));
  setLimits([](FetchLimits& limits) { limits.chainSeconds = 0; });
  const std::string late = reportOf(wrapperTo("/silent"));
  EXPECT_THAT(late, HasSubstr("127.0.0.1 was not asked: no time for the chain was left"));
  EXPECT_THAT(late, HasSubstr("Try a longer --total-timeout"));
}

TEST_F(TextReportTest, TheTimeToConnectPasses) {
  const BlackHole hole;
  setLimits([](FetchLimits& limits) { limits.connectSeconds = 0.3; });
  const std::string report = reportOf(hole.url());
  EXPECT_GE(millisecondsAfter("127.0.0.1 took no connection within ", report), 300.0);
  EXPECT_THAT(report, HasSubstr("--timeout"));
  EXPECT_THAT(report, ContainsRegex("\n  no connection in [0-9]+\\.[0-9] s"));
}

TEST_F(TextReportTest, WhatIsTooLarge) {
  const std::string ad = inlineAd("4.0", "<!--" + std::string(600, 'x') + "-->");
  server_.serve("/large", ad);
  server_.serve("/wrapper", wrapperTo("/large") + "<!--" + std::string(400, 'x') + "-->");
  server_.on("/headers", [](const Exchange& exchange) {
    std::vector<std::string> headers;
    for (int i = 0; i < 40; ++i) {
      headers.push_back("X-" + std::to_string(i) + ": " + std::string(8000, 'x'));
    }
    exchange.respond("x", "200 OK", headers);
  });
  EXPECT_THAT(reportOf(server_.url("/headers")), HasSubstr("send smaller headers"));
  setLimits([](FetchLimits& limits) { limits.maxBodyBytes = limits.maxChainBytes = 100; });
  EXPECT_THAT(reportOf(server_.url("/large")), HasSubstr("Try a larger --max-body"));
  setLimits([](FetchLimits& limits) { limits.maxBodyBytes = limits.maxChainBytes = 1000; });
  const std::string chain = reportOf(server_.url("/wrapper"));
  EXPECT_THAT(chain, HasSubstr("With the answer of 127.0.0.1 the chain is larger than allowed"));
  EXPECT_THAT(chain, Not(HasSubstr("--max-body")));
}

TEST_F(TextReportTest, AnswersThatAreNone) {
  redirect("/round", "/round");
  redirect("/away", "ftp://127.0.0.1/");
  server_.serve("/empty", "");
  server_.serve("/latin", "<VAST>\xFC</VAST>");
  server_.on("/short", [](const Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\nabc");
  });
  server_.on("/chunks", [](const Exchange& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nnonsense\r\n");
  });
  server_.on("/broken", [](const Exchange& exchange) {
    exchange.respond("no gzip", "200 OK", {"Content-Encoding: gzip"});
  });
  const struct {
    const char* path;
    const char* sentence;
    const char* advice;
  } rows[] = {
      {"/none", "127.0.0.1 answered 404", "look why"},
      {"/round", "redirects from one address to the next without end", "look why"},
      {"/away", "redirects to what is no URL of http or https", "redirect to a URL of http"},
      {"/empty", "answered 200 with an empty body", "answer with a VAST document"},
      {"/latin", "is not UTF-8 text", "send UTF-8"},
      {"/short", "ended the connection before its answer was whole", "look why"},
      {"/chunks", "is no HTTP that can be read", "look why"},
      {"/broken", "could not be asked, or its answer could not be read", "look why"},
  };
  for (const auto& row : rows) {
    const std::string report = reportOf(server_.url(row.path));
    EXPECT_THAT(report, HasSubstr(row.sentence));
    EXPECT_THAT(report, HasSubstr(row.advice));
    EXPECT_THAT(report, HasSubstr("first byte after ")) << row.path;
    EXPECT_THAT(report, HasSubstr(" bytes in ")) << row.path;
  }
}

TEST_F(TextReportTest, WhatWasNeverAsked) {
  EXPECT_THAT(reportOf("httpx://here.example/"), HasSubstr("write a URL of http or https"));
  Cancellation cancellation;
  cancellation.cancel();
  ParseOptions cancelled;
  cancelled.cancellation = cancellation;
  EXPECT_THAT(reportOf(server_.url("/none"), cancelled), HasSubstr("was cancelled"));
  FetchOptions options;
  options.userAgent = "two\nlines";
  setOptions(options);
  const std::string report = reportOf(server_.url("/none"));
  EXPECT_THAT(report, HasSubstr("the options of the request cannot be sent"));
  EXPECT_THAT(report, Not(HasSubstr(" in 0.0 s")));
}

TEST_F(TextReportTest, ARedirectToPlainHttpThatIsRefused) {
  HttpServer secure(TestCertificates::make());
  secure.on("/ad", [this](const Exchange& exchange) {
    exchange.respond("", "302 Found", {"Location: " + server_.url("/ad")});
  });
  FetchOptions options = trusting();
  options.httpsStaysHttps = true;
  setOptions(options);
  EXPECT_THAT(reportOf(secure.url("/ad")), HasSubstr("redirects from https to http"));
}

}  // namespace
}  // namespace tamzo::testing
