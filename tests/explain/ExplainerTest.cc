#include "explain/Explainer.h"

#include <gtest/gtest.h>

#include "tests/explain/ExplainFixture.h"

namespace tamzo::testing {
namespace {

using ExplainerTest = ExplainTest;

const std::string kWrapper =
    "<VAST version='3.0'><Error>e</Error><Ad id=' w '><Wrapper><AdSystem> DSP-X\n</AdSystem>"
    "<Error>e</Error><VASTAdTagURI>https://a.example/2?c=[CACHEBUSTING]&amp;f=[FOO] "
    "</VASTAdTagURI>"
    "<Impression>i</Impression><Creatives><Creative><Linear><TrackingEvents><Tracking "
    "event='start'>s1</Tracking></TrackingEvents></Linear></Creative><Creative><CompanionAds>"
    "<Companion/><Companion/></CompanionAds></Creative></Creatives></Wrapper></Ad></VAST>";

const std::string kInLine =
    "<VAST version='4.0'><Ad><InLine><AdTitle>T</AdTitle><Impression>i2</Impression>"
    "<AdVerifications><Verification/></AdVerifications><Creatives><Creative><Linear><Icons><Icon "
    "program='p'/><Icon/></Icons>"
    "<TrackingEvents><Tracking event='start'>s2</Tracking></TrackingEvents>"
    "<VideoClicks><CustomClick>c</CustomClick></VideoClicks>\n<MediaFiles><MediaFile "
    "type='video/mp4' delivery='streaming' width='6' height='x'>u</MediaFile>\n<MediaFile "
    "type='video/webm'>u</MediaFile><InteractiveCreativeFile/></MediaFiles></Linear></Creative>"
    "<Creative><Linear><MediaFiles><MediaFile type='video/mp4'>u</MediaFile></MediaFiles></Linear>"
    "</Creative></Creatives></InLine></Ad></VAST>";

class ExplainedChain : public ExplainTest {
 protected:
  ExplainedChain() {
    changeHost([](TamzoHost& host) { host.random = [](std::uint32_t) { return 5U; }; });
    FetchResult result;
    result.body = kInLine;
    result.contentType = "text/xml";
    result.milliseconds.total = 12.5;
    serve("https://a.example/2?c=10000005&f=%5BFOO%5D", result);
    json_ = explainAsJson(kWrapper);
  }

  ordered_json json_;
};

TEST_F(ExplainedChain, hopsTellWhereEachDocumentCameFrom) {
  ASSERT_EQ(json_["verdict"], "playable") << json_.dump(1);
  ASSERT_EQ(json_["hops"].size(), 2U);
  const auto& first = json_["hops"][0];
  EXPECT_EQ(first["source"], "input");
  EXPECT_TRUE(first["tag"].is_null());
  EXPECT_TRUE(first["url"].is_null());
  EXPECT_TRUE(first["fetch"].is_null());
  EXPECT_EQ(first["macros"], ordered_json::object());
  const auto& second = json_["hops"][1];
  EXPECT_EQ(second["source"], "url");
  EXPECT_EQ(second["tag"], "https://a.example/2?c=[CACHEBUSTING]&f=[FOO] ");
  EXPECT_EQ(second["url"], "https://a.example/2?c=10000005&f=[FOO]");
  EXPECT_EQ(second["macros"], (ordered_json{{"CACHEBUSTING", "10000005"}}));
  EXPECT_EQ(second["unfilled"], ordered_json{"FOO"});
}

TEST_F(ExplainedChain, hopsCountWhatTheyBrought) {
  const auto& first = json_["hops"][0];
  EXPECT_EQ(first["version"], "3.0");
  EXPECT_EQ(first["kind"], "wrapper");
  EXPECT_EQ(first["adSystem"], "DSP-X");
  EXPECT_TRUE(first["adTitle"].is_null());
  EXPECT_EQ(first["adId"], "w");
  const auto counts = [](const ordered_json& hop) {
    std::vector<int> all;
    for (const char* key : {"ads", "creatives", "linears", "impressions", "trackers", "companions",
                            "icons", "verifications", "errorUrls"}) {
      all.push_back(hop[key]);
    }
    return all;
  };
  EXPECT_EQ(counts(first), (std::vector<int>{1, 2, 1, 1, 1, 2, 0, 0, 2}));
  EXPECT_EQ(counts(json_["hops"][1]), (std::vector<int>{1, 2, 2, 1, 2, 0, 2, 0, 0}));
}

TEST_F(ExplainedChain, aFetchIsToldWhole) {
  const ordered_json& fetch = json_["hops"][1]["fetch"];
  EXPECT_EQ(fetch["status"], 200);
  EXPECT_EQ(fetch["contentType"], "text/xml");
  EXPECT_TRUE(fetch["failure"].is_null());
  EXPECT_EQ(fetch["bytes"], kInLine.size());
  EXPECT_EQ(fetch["redirects"], ordered_json::array());
  EXPECT_EQ(fetch["milliseconds"]["total"], 12.5);
  EXPECT_EQ(fetch["reusedConnection"], false);
  std::vector<std::string> keys;
  for (const auto& [key, value] : fetch.items()) {
    keys.push_back(key);
  }
  EXPECT_EQ(keys,
            (std::vector<std::string>{"status", "finalUrl", "redirects", "bytes", "contentType",
                                      "failure", "milliseconds", "reusedConnection"}));
}

TEST_F(ExplainedChain, everyTrackerIsFoundAgainByHop) {
  EXPECT_EQ(json_["trackerHops"], (ordered_json{{"Impression", {1, 2}},
                                                {"start", {1, 2}},
                                                {"ClickTracking", ordered_json::array()},
                                                {"CustomClickTracker", {2}}}));
  std::size_t i = 0;
  for (const TrackerMap::Entry& entry : *ad().trackers()) {
    EXPECT_EQ(json_["trackerHops"][std::string(entry.name.view())].size(), entry.events->size());
    ++i;
  }
  EXPECT_EQ(json_["trackerHops"].size(), i);
}

TEST_F(ExplainedChain, eachMediaFileIsTakenOrNot) {
  ASSERT_EQ(json_["mediaFiles"].size(), 4U);
  const auto& taken = json_["mediaFiles"][0];
  EXPECT_EQ(taken, (ordered_json{{"hop", 2},
                                 {"line", 2},
                                 {"type", "video/mp4"},
                                 {"delivery", "streaming"},
                                 {"width", 6},
                                 {"height", 0},
                                 {"taken", true},
                                 {"why", nullptr}}));
  for (std::size_t i = 1; i < 4; ++i) {
    EXPECT_EQ(json_["mediaFiles"][i]["taken"], false);
    EXPECT_TRUE(json_["mediaFiles"][i]["why"].is_string());
  }
  EXPECT_EQ(json_["mediaFiles"][1]["line"], 3);
  EXPECT_TRUE(json_["mediaFiles"][3]["delivery"].is_null());
}

TEST_F(ExplainedChain, theRecordIsTheSameWithAndWithoutExplanation) {
  const std::string explained = recordAsJson(ad());
  EXPECT_EQ(recordAsJson(*TamzoVastAd::initWithVast(Text(kWrapper))), explained);
}

TEST_F(ExplainerTest, keysStandInTheirOrder) {
  const ordered_json json = explainAsJson("<VAST version='9'/>");
  const auto keysOf = [](const ordered_json& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.items()) {
      keys.push_back(key);
    }
    return keys;
  };
  EXPECT_EQ(keysOf(json), (Lines{"verdict", "errorCode", "sentence", "findings", "hops",
                                 "trackerHops", "mediaFiles"}));
  EXPECT_EQ(keysOf(json["findings"][0]), (Lines{"id", "severity", "hop", "line", "column",
                                                "excerpt", "message", "advice", "details"}));
  EXPECT_EQ(json["verdict"], "failed");
  EXPECT_EQ(json["errorCode"], 102);
}

TEST_F(ExplainerTest, thereIsExactlyOneErrorUnlessTheAdPlays) {
  const auto errorsOf = [](const explain::Explanation& explanation) {
    return std::count_if(
        explanation.findings.begin(), explanation.findings.end(),
        [](const auto& finding) { return finding.severity == explain::Severity::error; });
  };
  for (const std::string response :
       {"", "abc", "abcd", "<a/>", "<VAST version='4'/>", "http://x",
        "<VAST version='4'><Ad/></VAST>", "<VAST version='4'><Ad><InLine/></Ad></VAST>"}) {
    EXPECT_EQ(errorsOf(explainResponse(response)), 1) << response;
  }
  EXPECT_EQ(errorsOf(explainResponse(kInLine)), 0);
}

TEST_F(ExplainerTest, aParseThatNobodyWatchedHasAnErrorAllTheSame) {
  for (const std::string response :
       {"", "abc", "abcd", "<a/>", "<VAST/>", "<VAST version='9'/>", "<VAST version='4'/>",
        "<VAST version='4'><Ad/></VAST>", "<VAST version='4'><Ad><InLine/></Ad></VAST>"}) {
    const auto ad = TamzoVastAd::initWithVast(Text(response));
    ASSERT_NE(ad->errorCode(), 0) << response;
    const explain::Explanation explanation = explain::Explainer().explain(*ad);
    EXPECT_NE(errorOf(explanation), nullptr) << response;
  }
}

TEST_F(ExplainerTest, aFailureToObserveDoesNotReachTheParse) {
  blockCategories("a");
  changeHost(
      [](TamzoHost& host) { host.blockedAdCategories = []() -> Text { throw std::bad_alloc(); }; });
  explain::Explainer explainer;
  ParseOptions options;
  options.observer = &explainer;
  const auto ad = TamzoVastAd::initWithVast(Text(kInLine), options);
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_THROW(explainer.explain(*ad), std::bad_alloc);
}

TEST_F(ExplainerTest, aListOfCategoriesThatFailsIsExplained) {
  blockCategories("a");
  changeHost([](TamzoHost& host) {
    host.blockedAdCategories = []() -> Text { throw std::runtime_error("no list"); };
  });
  EXPECT_EQ(explainResponse(kInLine).errorCode, 0);
  const explain::Explanation failed = explainResponse(
      "<VAST version='4.0'><Ad><InLine><Category>IAB8</Category></InLine></Ad></VAST>");
  EXPECT_EQ(failed.errorCode, 100);
  EXPECT_NE(errorOf(failed), nullptr);
}

TEST_F(ExplainerTest, theSentenceSaysWhatHappenedWhereAndWhose) {
  serve("https://a.example/2", "<VAST version='4.0'>\n<a b='1' b='2'/></VAST>");
  EXPECT_EQ(explainResponse("<VAST version='4.0'><Ad><Wrapper><VASTAdTagURI>https://a.example/2"
                            "</VASTAdTagURI></Wrapper></Ad></VAST>")
                .sentence,
            "An element has the attribute \"b\" twice (hop 2, a.example, line 2, column 10).");
}

}  // namespace
}  // namespace tamzo::testing
