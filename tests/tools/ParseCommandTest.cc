// "tamzo-vast parse": one response and its record.

#include <gtest/gtest.h>

#include <chrono>
#include <mutex>
#include <thread>

#include "tests/support/CommandFixture.h"
#include "tests/support/HttpServer.h"
#include "tests/support/TestCertificates.h"

namespace tamzo::testing {
namespace {

using ParseCommandTest = CommandTest;

TEST_F(ParseCommandTest, ParseTakesAFileOrStandardInput) {
  const std::string response = ad("a");
  const Result named = run({"parse", file("a.xml", response)});
  EXPECT_EQ(named.status, 0) << named.err;
  EXPECT_EQ(named.err, "");
  EXPECT_NE(named.out.find("OK"), std::string::npos) << named.out;
  EXPECT_EQ(run({"parse"}, response).out, named.out);
  EXPECT_EQ(run({"parse", "-"}, response).out, named.out);
  EXPECT_EQ(run({"parse", "--format", "text"}, response).out, named.out);
}

TEST_F(ParseCommandTest, JsonIsTheWholeRecord) {
  const Result result = run({"parse", "--format", "json"}, ad("a"));
  EXPECT_EQ(result.status, 0);
  const auto json = ordered_json::parse(result.out);
  EXPECT_EQ(json.size(), 72U);
  EXPECT_EQ(json.begin().key(), "adID");
  EXPECT_EQ(json.at("adID"), "a");
  EXPECT_EQ(json.at("vastResponseStr"), ad("a"));
  EXPECT_EQ(result.out.back(), '\n');
}

TEST_F(ParseCommandTest, AFailedAdIsPrintedWithStatus1) {
  const Result json = run({"parse", "--format", "json"}, "<VAST version='9'/>");
  EXPECT_EQ(json.status, 1);
  EXPECT_EQ(ordered_json::parse(json.out).at("errorCode"), 102);
  const Result text = run({"parse"}, "");
  EXPECT_EQ(text.status, 1);
  EXPECT_NE(text.out.find("FAILED 100"), std::string::npos) << text.out;
}

TEST_F(ParseCommandTest, OutputGoesToAFile) {
  const Result direct = run({"parse"}, ad("a"));
  const Result result = run({"parse", "-o", path("out")}, ad("a"));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(contentOf(path("out")), direct.out);
}

TEST_F(ParseCommandTest, CategoriesAreBlockedAsGiven) {
  const std::string response = ad("a", "<Category>IAB26</Category>");
  EXPECT_EQ(record({"parse"}, response).at("errorCode"), 0);
  EXPECT_EQ(record({"parse", "--blocked-categories", "IAB1,IAB26"}, response).at("errorCode"), 205);
  EXPECT_EQ(record({"parse", "--blocked-categories", "IAB1, IAB26"}, response).at("errorCode"), 0);
  const std::string empty = ad("a", "<Category/>");
  EXPECT_EQ(record({"parse"}, empty).at("errorCode"), 0) << "nil without the option";
  EXPECT_EQ(record({"parse", "--blocked-categories", ""}, empty).at("errorCode"), 205);
}

TEST_F(ParseCommandTest, AByteOrderMarkAndADeclaredEncodingChangeNothing) {
  const std::string mark = "\xEF\xBB\xBF";
  EXPECT_EQ(record({"parse"}, mark + ad("a")).at("vastResponseStr"), ad("a"));
  for (const char* encoding : {"UTF-16", "ISO-8859-1", "UTF-8", "nonsense"}) {
    const auto json = record({"parse"}, std::string("<?xml version='1.0' encoding='") + encoding +
                                            "'?>" + ad("\xC3\xA9"));
    EXPECT_EQ(json.at("adID"), "\xC3\xA9") << encoding;
  }
}

TEST_F(ParseCommandTest, DebugLinesGoToStandardError) {
  HttpServer server;
  server.serve("/2", ad("b"));
  const Result quiet = run({"parse", "--format", "json", server.url("/2")});
  EXPECT_EQ(quiet.err, "");
  const Result result = run({"parse", "--debug", "--format", "json", server.url("/2")});
  EXPECT_EQ(result.out, quiet.out);
  std::istringstream lines(result.err);
  std::vector<std::string> fetch;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("[TAMZO-LOG][v8.0.0 p0] ")) {
      fetch.push_back(line);
    }
  }
  EXPECT_EQ(fetch, (Arguments{"vastTagURI = " + server.url("/2"),
                              "url formed from vastTagURI = " + server.url("/2")}));
  EXPECT_NE(result.err.find("[TAMZO-LOG][v8.0.0 p0] VAST version is 4.0\n"), std::string::npos);
  EXPECT_EQ(result.err.back(), '\n');
  const Result nil = run({"parse", "--debug"}, ad("a", "<Category>c</Category>"));
  EXPECT_NE(nil.err.find("[Blocked ad category: (null)] and"), std::string::npos) << nil.err;
}

TEST_F(ParseCommandTest, FetchesAreLimited) {
  HttpServer server;
  server.serve("/ad", ad("a"));
  server.on("/slow", [&server](const Exchange&) {
    while (!server.isClosing()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  });
  const std::string size = std::to_string(ad("a").size());
  const std::string less = std::to_string(ad("a").size() - 1);
  const struct {
    const char* name;
    Arguments arguments;
    int errorCode;
  } rows[] = {
      {"plain", {"parse", server.url("/ad")}, 0},
      {"missing", {"parse", server.url("/gone")}, 301},
      {"a body of that size", {"parse", "--max-body", size, server.url("/ad")}, 0},
      {"a larger body", {"parse", "--max-body", less, server.url("/ad")}, 301},
      {"enough time", {"parse", "--timeout", "30", server.url("/ad")}, 0},
      {"huge limits",
       {"parse", "--timeout", "99999999999999999999", "--max-body", "18446744073709551615",
        server.url("/ad")},
       0},
      {"too slow", {"parse", "--timeout", "0.3", server.url("/slow")}, 301},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(record(row.arguments).value("errorCode", -1), row.errorCode) << row.name;
  }
}

TEST_F(ParseCommandTest, RequestsAreMadeAsTheOptionsSay) {
  HttpServer server;
  HttpServer secure(TestCertificates::make());
  HttpServer proxy;
  std::mutex mutex;
  std::string headers;
  server.on("/ad", [&](const Exchange& exchange) {
    const std::lock_guard lock(mutex);
    headers = exchange.header("User-Agent").value_or("-") + "|" +
              exchange.header("X-One").value_or("-") + "|" + exchange.header("X-Two").value_or("-");
    exchange.respond(ad("a"));
  });
  secure.serve("/ad", ad("a"));
  proxy.serve(server.url("/ad"), ad("by the proxy"));
  const auto seen = [&] {
    const std::lock_guard lock(mutex);
    return headers;
  };
  const auto codeOf = [this](const Arguments& arguments) {
    return record(arguments).value("errorCode", -1);
  };
  EXPECT_EQ(codeOf({"parse", server.url("/ad")}), 0);
  EXPECT_EQ(seen(), "-|-|-");
  EXPECT_EQ(codeOf({"parse", "--user-agent", "App/1", "--header", "X-One: 1", "--header",
                    "X-Two:", server.url("/ad")}),
            0);
  EXPECT_EQ(seen(), "App/1|1|");
  EXPECT_EQ(codeOf({"parse", secure.url("/ad")}), 301);
  EXPECT_EQ(codeOf({"parse", "--ca", TestCertificates::caFile(), secure.url("/ad")}), 0);
  EXPECT_EQ(codeOf({"parse", "--public-only", server.url("/ad")}), 301);
  EXPECT_EQ(record({"parse", "--proxy", proxy.url(), server.url("/ad")}).value("adID", ""),
            "by the proxy");
  EXPECT_EQ(record({"parse", "--proxy", "none", server.url("/ad")}).value("adID", ""), "a");
}

TEST_F(ParseCommandTest, AChainMayHaveALimitOfTimeAsAWhole) {
  HttpServer server;
  for (int i = 1; i <= 4; ++i) {
    server.on("/" + std::to_string(i), [&server, i](const Exchange& exchange) {
      std::this_thread::sleep_for(std::chrono::milliseconds(400));
      exchange.respond("<VAST version='3.0'><Ad id='w'><Wrapper><VASTAdTagURI>" +
                       server.url("/" + std::to_string(i + 1)) +
                       "</VASTAdTagURI></Wrapper></Ad></VAST>");
    });
  }
  server.serve("/5", ad("a"));
  EXPECT_EQ(record({"parse", "--total-timeout", "60", server.url("/1")}).value("errorCode", -1),
            302);
  EXPECT_EQ(record({"parse", "--total-timeout", "1.5", server.url("/1")}).value("errorCode", -1),
            301);
  EXPECT_EQ(record({"parse", "--timeout", "1.5", "--total-timeout", "60", server.url("/1")})
                .value("errorCode", -1),
            302)
      << "each is quick enough";
}

TEST_F(ParseCommandTest, HostileTextPutsNoControlCharacterOnTheTerminal) {
  const std::string evil =
      "&#x85;&#x9B;2J\xC2\x9B"
      "1m&#x7F;&#10;&#13;&#9;x";
  std::string response = ad(
      evil, "<Impression>" + evil + "</Impression><Category>" + evil +
                "</Category><UniversalAdId idRegistry='" + evil + "' idValue='" + evil +
                "'/>"
                "<Extensions><Extension><Tamzo><ExtraActions>[\"\\u001b[2J\\u009b\"]</ExtraActions>"
                "<ExtraTrackingEvents><Tracking event='" +
                evil + "'>" + evil +
                "</Tracking>"
                "</ExtraTrackingEvents></Tamzo><AdVerifications><Verification vendor='" +
                evil +
                "'>"
                "<JavaScriptResource>" +
                evil +
                "</JavaScriptResource></Verification></AdVerifications>"
                "</Extension></Extensions>");
  const std::string linear = "<Linear><Icons><Icon program='" + evil + "'/></Icons><Duration>" +
                             evil + "</Duration><VideoClicks><ClickThrough>" + evil +
                             "</ClickThrough></VideoClicks>";
  response.replace(response.find("<Linear>"), 8, linear);
  const std::string companion = "<Creative><CompanionAds><Companion id='" + evil +
                                "'><IFrameResource>" + evil +
                                "</IFrameResource><CompanionClickThrough>" + evil +
                                "</CompanionClickThrough></Companion></CompanionAds></Creative>";
  response.insert(response.find("</Creatives>"), companion);
  const Result result = run({"parse"}, response);
  EXPECT_EQ(result.status, 0) << result.out;
  EXPECT_NE(result.out.find("\\u009b2J"), std::string::npos) << result.out;
  for (std::size_t at = 0; at < result.out.size(); ++at) {
    const auto byte = static_cast<unsigned char>(result.out[at]);
    const bool isC1 = byte == 0xC2 && static_cast<unsigned char>(result.out[at + 1]) < 0xA0;
    ASSERT_FALSE((byte < 0x20 && byte != '\n') || byte == 0x7F || isC1)
        << "byte " << int{byte} << " after " << result.out.substr(0, at);
  }
}

TEST_F(ParseCommandTest, LimitsMayBeWrittenInAnyDecimalForm) {
  for (const char* value : {"1", "0.5", ".5", "5.", "007"}) {
    EXPECT_EQ(run({"parse", "--timeout", value}, ad("a")).status, 0) << value;
  }
  EXPECT_EQ(run({"parse", "--max-body", "1"}, ad("a")).status, 0);
}

}  // namespace
}  // namespace tamzo::testing
