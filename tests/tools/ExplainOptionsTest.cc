// What the command says beside records: --explain, --only, --fail-on, --report, --save, --replay.

#include <gtest/gtest.h>

#include "tests/support/CommandFixture.h"
#include "tests/support/HttpServer.h"

namespace tamzo::testing {
namespace {

using ExplainOptionsTest = CommandTest;

const std::string kBroken = "<VAST version='4.0'>\n<a b='1' b='2'/></VAST>";

TEST_F(ExplainOptionsTest, ParseGivesRecordAndExplanation) {
  const Result plain = run({"parse", "--format", "json"}, kBroken);
  const Result explained = run({"parse", "--format", "json", "--explain"}, kBroken);
  EXPECT_EQ(explained.status, plain.status);
  const auto json = ordered_json::parse(explained.out);
  EXPECT_EQ(json["record"], ordered_json::parse(plain.out));
  EXPECT_EQ(json["explanation"]["findings"][0]["id"], "duplicate-attribute");
  EXPECT_EQ(json.size(), 2U);
}

TEST_F(ExplainOptionsTest, TextSaysWhatHappenedWhereAndWhatToDo) {
  const Result result = run({"parse"}, kBroken);
  EXPECT_EQ(result.out.substr(0, result.out.find("\n\n")),
            "FAILED 101  An element has the attribute \"b\" twice (hop 1, line 2, column 10).  "
            "[duplicate-attribute]\n"
            "  line 2: <a b='1' b='2'/></VAST>\n"
            "                   ^\n"
            "  Ad server: write each attribute of an element once.");
}

TEST_F(ExplainOptionsTest, HtmlIsOnePage) {
  const Result result = run({"parse", "--format", "html"}, kBroken);
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.out.starts_with("<!DOCTYPE html>"));
  EXPECT_NE(result.out.find("[duplicate-attribute]"), std::string::npos);
  EXPECT_NE(result.out.find("XML is not VAST"), std::string::npos) << "the log";
  EXPECT_EQ(result.err, "");
}

TEST_F(ExplainOptionsTest, BatchExplainsAndCounts) {
  const std::string lines = requestLine(1, kBroken) + requestLine(2, ad("a"));
  const Result plain = run({"batch"}, lines);
  const Result result = run({"batch", "--explain"}, lines);
  EXPECT_EQ(result.status, plain.status);
  const auto answers = jsonLines(result.out);
  ASSERT_EQ(answers.size(), 2U);
  EXPECT_EQ(answers[0]["explanation"]["findings"][0]["id"], "duplicate-attribute");
  EXPECT_EQ(answers[1]["explanation"]["verdict"], "playable");
  EXPECT_EQ(answers[1]["record"], jsonLines(plain.out)[1]["record"]);
  EXPECT_NE(result.err.find("duplicate-attribute (error)"), std::string::npos) << result.err;
  EXPECT_EQ(plain.err.find("duplicate-attribute"), std::string::npos);
}

TEST_F(ExplainOptionsTest, BatchPicksAnswersByFinding) {
  const std::string lines =
      requestLine(1, kBroken) + requestLine(2, ad("a")) + requestLine(3, "<VAST version='9'/>");
  const auto answers = jsonLines(run({"batch", "--only", "no-ad,version-refused"}, lines).out);
  ASSERT_EQ(answers.size(), 1U);
  EXPECT_EQ(answers[0]["id"], 3);
  EXPECT_EQ(answers[0].size(), 2U) << "without an explanation";
}

TEST_F(ExplainOptionsTest, BatchFailsOnAFinding) {
  const std::string insecure = requestLine(1, ad("a", "<Impression>http://t/</Impression>"));
  EXPECT_EQ(run({"batch"}, insecure).status, 0);
  EXPECT_EQ(run({"batch", "--fail-on", "cut-off"}, insecure).status, 0);
  EXPECT_EQ(run({"batch", "--fail-on", "cut-off,insecure-url"}, insecure).status, 1);
  const Result unknown = run({"batch", "--fail-on", "insecure-urls"}, insecure);
  EXPECT_EQ(unknown.status, 2);
  EXPECT_NE(unknown.err.find("did you mean insecure-url?"), std::string::npos) << unknown.err;
}

TEST_F(ExplainOptionsTest, BatchWritesAnIndexAndAReportForEachFailure) {
  const std::string lines = requestLine("<b>", kBroken) + requestLine(2, ad("a"));
  EXPECT_EQ(run({"batch", "--report", path("out")}, lines).status, 1);
  const std::string index = contentOf(path("out") + "/index.html");
  EXPECT_NE(index.find("<a href=\"000001.html\">&lt;b&gt;</a>"), std::string::npos) << index;
  EXPECT_NE(contentOf(path("out") + "/000001.html").find("[duplicate-attribute]"),
            std::string::npos);
  EXPECT_FALSE(fs::exists(path("out") + "/000002.html"));
  const Result refused = run({"batch", "--report", path("none/out")}, lines);
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.out, "");
}

TEST_F(ExplainOptionsTest, ASavedChainGivesTheSameRecordWithoutServers) {
  Arguments replay;
  Result saved;
  const std::string har = path("a.har");
  {
    HttpServer server;
    server.on("/2", [&server](const Exchange& exchange) {
      exchange.respond("", "302 Found", {"Location: " + server.url("/3")});
    });
    server.serve("/3", ad("b"));
    const std::string response = "<VAST version='4.0'><Ad id='w'><Wrapper><VASTAdTagURI>" +
                                 server.url("/2") + "</VASTAdTagURI></Wrapper></Ad></VAST>";
    saved = run({"parse", "--format", "json", "--save", har}, response);
    ASSERT_EQ(saved.status, 0) << saved.out;
  }
  const Result replayed = run({"parse", "--format", "json", "--replay", har});
  EXPECT_EQ(replayed.out, saved.out);
  EXPECT_EQ(replayed.status, 0);
  const auto json = ordered_json::parse(contentOf(har));
  EXPECT_EQ(json["log"]["entries"].size(), 3U);
  EXPECT_EQ(json["log"]["entries"][0]["request"]["url"], "about:input");
  EXPECT_EQ(json["log"]["entries"][1]["response"]["status"], 302);
  EXPECT_EQ(run({"page", "--replay", har}).status, 0);
}

TEST_F(ExplainOptionsTest, ASavedFailureIsExplainedAsItWas) {
  const std::string har = path("a.har");
  const std::string response =
      "<VAST version='4.0'><Ad id='w'><Wrapper><VASTAdTagURI>http://127.0.0.1:1/ad</VASTAdTagURI>"
      "</Wrapper></Ad></VAST>";
  const Result saved = run({"parse", "--format", "html", "--public-only", "--save", har}, response);
  ASSERT_NE(saved.out.find("leave --public-only out"), std::string::npos);
  const Result replayed = run({"parse", "--format", "html", "--replay", har});
  EXPECT_NE(replayed.out.find("leave --public-only out"), std::string::npos);
}

TEST_F(ExplainOptionsTest, AFileThatCannotBePlayedEndsWithStatus2) {
  for (const std::string& name :
       {path("none.har"), file("a.har", "{}"), file("b.har", R"({"log": {"entries": []}})")}) {
    const Result result = run({"parse", "--replay", name});
    EXPECT_EQ(result.status, 2) << name;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  }
}

}  // namespace
}  // namespace tamzo::testing
