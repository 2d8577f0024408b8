// Where the parts of a response, or the documents of a chain, meet: what a whole parse leaves in
// single properties of the record.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tamzo/vast/RecordJson.h"
#include "tests/support/Responses.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using nlohmann::json;

constexpr const char* kNameless = "<TrackingEvents><Tracking>u</Tracking></TrackingEvents>";

std::string vendor(const std::string& content) { return "<Tamzo>" + content + "</Tamzo>"; }

std::string extraEvent(const std::string& name, const std::string& url) {
  return vendor("<ExtraTrackingEvents><Tracking event='" + name + "'>" + url +
                "</Tracking></ExtraTrackingEvents>");
}

struct Case {
  const char* name;
  std::vector<std::string> documents;  // the response, then the answers to the fetches in turn
  json expected;                       // some of the record's properties
};

class WholeParseTest : public SdkTest {
 protected:
  // The properties that `wanted` names.
  static json propertiesOf(const TamzoVastAd& ad, const json& wanted) {
    const json record = json::parse(recordAsJson(ad));
    json found;
    for (const auto& [name, value] : wanted.items()) {
      found[name] = record.at(name);
    }
    return found;
  }

  void check(const std::vector<Case>& cases) {
    for (const Case& row : cases) {
      std::size_t fetches = 0;
      readUrlsWith([&](const Text&) -> std::optional<std::string> {
        return ++fetches < row.documents.size() ? std::optional(row.documents[fetches])
                                                : std::nullopt;
      });
      const auto ad = TamzoVastAd::initWithVast(row.documents.front());
      EXPECT_EQ(propertiesOf(*ad, row.expected), row.expected) << row.name;
    }
  }
};

json events(std::initializer_list<std::pair<const char*, std::vector<const char*>>> lists) {
  json trackers = json::object();
  for (const auto& [name, urls] : lists) {
    trackers[name] = json::array();
    for (const char* url : urls) {
      trackers[name].push_back({{"url", url}, {"offset", ""}});
    }
  }
  return trackers;
}

TEST_F(WholeParseTest, AContainerThatOccursTwiceIsReadTwice) {
  const std::string twice =
      "<TrackingEvents><Tracking event='a'>1</Tracking></TrackingEvents>"
      "<VideoClicks><ClickThrough>t1</ClickThrough><ClickTracking>c1</ClickTracking>"
      "<CustomClick>k1</CustomClick></VideoClicks><Icons><Icon program='p'/></Icons>"
      "<MediaFiles><MediaFile type='video/mp4'>m1</MediaFile></MediaFiles>"
      "<TrackingEvents><Tracking event='a'>2</Tracking></TrackingEvents>"
      "<VideoClicks><ClickThrough>t2</ClickThrough><ClickTracking>c2</ClickTracking>"
      "<CustomClick>k2</CustomClick></VideoClicks><Icons><Icon program='q'/></Icons>"
      "<MediaFiles><MediaFile type='video/mp4'>m2</MediaFile></MediaFiles>";
  const auto ad = TamzoVastAd::initWithVast(inlineAd(
      "4.0",
      linear("<MediaFiles><MediaFile type='video/mp4'>m0</MediaFile></MediaFiles>" + twice)));
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_EQ(ad->mediaFiles()->size(), 3U);
  EXPECT_EQ(ad->mediaFiles()->back()->url(), "m2");
  EXPECT_EQ(ad->clickThrough(), "t2");
  EXPECT_EQ(ad->extraActions().list()->size(), 2U);
  const json expected{{"trackers", events({{"Impression", {}},
                                           {"a", {"1", "2"}},
                                           {"ClickTracking", {"c1", "c2"}},
                                           {"CustomClickTracker", {"k1", "k2"}}})}};
  EXPECT_EQ(propertiesOf(*ad, expected), expected);
}

TEST_F(WholeParseTest, ANamelessEventFailsTheAdWhereItsVersionReadsIt) {
  const std::string block = vendorExtension("<TrackId>t</TrackId>");
  const std::string bad = std::string(kNameless) + kVideo;
  const auto inlineCase = [&](const char* version, const json& trackId) {
    return Case{version,
                {inlineAd(version, "<Impression>i</Impression>" + block, bad)},
                {{"errorCode", 100}, {"trackId", trackId}, {"mediaFiles", json::array()}}};
  };
  check({
      inlineCase("2.0", "t"),      // extensions come before trackers
      inlineCase("3.0", nullptr),  // and after them
      inlineCase("4.0", nullptr),
      {"of a Wrapper",
       {wrapper("3.0", "<Impression>i</Impression>" + linear(kNameless) + block), inlineAd("3.0")},
       {{"errorCode", 100},
        {"vastTagURI", "http://ads.example/2"},
        {"trackId", nullptr},
        {"companionAds", json::array()},
        {"trackers", events({{"Impression", {"i"}}})}}},
  });
}

TEST_F(WholeParseTest, AFetchLeavesItsTraceWhateverItBrings) {
  const std::string ad = inlineAd("3.0");
  check({
      {"the tag is trimmed though nothing comes",
       {"http://ads.example/1 \n"},
       {{"errorCode", 301}, {"vastTagURI", "http://ads.example/1"}}},
      {"a body is no tag",
       {"http://ads.example/1", "http://ads.example/2", ad},
       {{"errorCode", 101}, {"vastTagURI", "http://ads.example/1"}}},
      {"white space before the root", {"http://ads.example/1", " \n" + ad}, {{"errorCode", 0}}},
      {"white space before a declaration",
       {"http://ads.example/1", "\n<?xml version='1.0'?>" + ad},
       {{"errorCode", 101}}},
  });
}

TEST_F(WholeParseTest, TheIdIsTheFirstAdsAndTheInLineTheFirstThereIs) {
  check({{"two ads",
          {"<VAST version='3.0'><Ad id='first'/>" +
           inlineAd("3.0", "<Impression>i</Impression>").substr(20)},
          {{"errorCode", 0},
           {"adID", "first"},
           {"trackers", events({{"Impression", {"i"}}, {"ClickTracking", {}}})}}}});
}

TEST_F(WholeParseTest, ExtraEventsOfEveryBlockAreRead) {
  check({
      {"of two blocks, and of two extensions",
       {inlineAd("4.0", "<Extensions><Extension>" + extraEvent("x", "1") + extraEvent("x", "2") +
                            "</Extension><Extension>" + extraEvent("x", "3") +
                            "</Extension></Extensions>")},
       {{"trackers", events({{"Impression", {}}, {"ClickTracking", {}}, {"x", {"1", "2", "3"}}})}}},
      {"under a name whose list is replaced afterwards",
       {inlineAd("4.0", extension(extraEvent("CustomClickTracker", "x")),
                 std::string("<VideoClicks><CustomClick>k</CustomClick></VideoClicks>") + kVideo)},
       {{"trackers",
         events({{"Impression", {}}, {"ClickTracking", {}}, {"CustomClickTracker", {"k"}}})}}},
      {"of a Wrapper, replaced by the InLine's viewable impressions",
       {wrapper("4.0", extension(extraEvent("Viewable", "x"))),
        inlineAd("4.0", "<ViewableImpression><Viewable>v</Viewable></ViewableImpression>")},
       {{"trackers", events({{"Impression", {}},
                             {"Viewable", {"v"}},
                             {"NotViewable", {}},
                             {"ViewUndetermined", {}},
                             {"ClickTracking", {}}})}}},
  });
}

TEST_F(WholeParseTest, ViewableImpressionsOfTheInLineReplaceTheWrappers) {
  check({{"a chain",
          {wrapper("4.0",
                   "<ViewableImpression><Viewable>w</Viewable><NotViewable>w</NotViewable>"
                   "</ViewableImpression>"),
           inlineAd("4.0", "<ViewableImpression><Viewable>v</Viewable></ViewableImpression>")},
          {{"trackers", events({{"Impression", {}},
                                {"Viewable", {"v"}},
                                {"NotViewable", {}},
                                {"ViewUndetermined", {}},
                                {"ClickTracking", {}}})}}}});
}

TEST_F(WholeParseTest, AShareOfTheDurationIsTakenBeforeTheDurationIsRead) {
  const std::string timed = std::string("<Duration>00:00:30</Duration>") + kVideo;
  const std::string share = vendorExtension("<SkipOffset>50%</SkipOffset>");
  for (const char* version : {"2.0", "3.0", "4.0"}) {
    check({{version,
            {inlineAd(version, share, timed)},
            {{"errorCode", 0},
             {"skipOffsetMillis", 0},
             {"duration", {{"text", "00:00:30"}, {"durationInSeconds", 30}}}}}});
  }
}

TEST_F(WholeParseTest, ALaterBlockTakesImaTrackingBack) {
  check({{"two extensions",
          {wrapper("3.0", "<Extensions><Extension>" + vendor("<ImaTracking>1</ImaTracking>") +
                              "</Extension><Extension>" + vendor("") + "</Extension></Extensions>"),
           inlineAd("3.0")},
          {{"errorCode", 0}, {"isImaEnabled", false}}}});
}

TEST_F(WholeParseTest, AMacroIsFilledFromTheBlocksReadSoFar) {
  std::vector<std::string> asked;
  const std::string tag = "http://ads.example/?ua=[CLIENTUA]";
  const std::vector<std::string> documents{
      wrapper("3.0", vendorExtension("<ClientUA>me</ClientUA>"), tag),
      wrapper("3.0", vendorExtension(""), tag), wrapper("3.0", "", tag)};
  readUrlsWith([&](const Text& url) -> std::optional<std::string> {
    asked.emplace_back(url.view());
    return asked.size() < documents.size() ? std::optional(documents[asked.size()]) : std::nullopt;
  });
  TamzoVastAd::initWithVast(documents.front());
  const std::string base = "http://ads.example/?ua=";
  EXPECT_EQ(asked, (std::vector<std::string>{base + "-1", base + "me", base + "-1"}))
      << "the tag of a document is filled before its own block is read";
}

}  // namespace
}  // namespace tamzo::testing
