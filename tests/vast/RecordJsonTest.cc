// The JSON form of a record.

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>

#include "tamzo/vast/RecordJson.h"
#include "tests/support/PropertyNames.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using nlohmann::ordered_json;

using RecordJsonTest = SdkTest;

std::string property(const TamzoVastAd& ad, const std::string& name) {
  return ordered_json::parse(recordAsJson(ad)).at(name).dump();
}

// The property's text as written, between its key and the next one's.
std::string written(const TamzoVastAd& ad, const std::string& name, const std::string& next) {
  const std::string json = recordAsJson(ad);
  const std::size_t begin = json.find("\"" + name + "\":") + name.size() + 3;
  return json.substr(begin, json.find(",\"" + next + "\":", begin) - begin);
}

TEST_F(RecordJsonTest, EveryPropertyIsThereInTheOrderOfItsTable) {
  ASSERT_EQ(kPropertyNames.size(), 72U);
  for (const JsonLayout layout : {JsonLayout::compact, JsonLayout::indented}) {
    const auto record = ordered_json::parse(recordAsJson(*TamzoVastAd::initWithVast(""), layout));
    std::vector<std::string> keys;
    for (const auto& [key, value] : record.items()) {
      keys.push_back(key);
    }
    EXPECT_EQ(keys, kPropertyNames);
  }
}

TEST_F(RecordJsonTest, AFreshRecordHasItsInitialValues) {
  ordered_json expected = ordered_json::object();
  for (const std::string& key : kPropertyNames) {
    expected[key] = nullptr;
  }
  for (const char* list : {"trackersOffset", "companionAds", "mediaFiles", "extraActions",
                           "measurementProviderList", "categoryArray"}) {
    expected[list] = ordered_json::array();
  }
  for (const char* text :
       {"vastTagURI", "vastResponseStr", "moatVastIds", "moatViewImpressionStr"}) {
    expected[text] = "";
  }
  for (const char* number :
       {"skipOffsetMillis", "bid", "viewabilityAction", "overlayDimensionRatioNode", "expires"}) {
    expected[number] = 0;
  }
  for (const char* flag :
       {"isCoppaEnabled", "is360Video", "isImaEnabled", "canZoom", "canOpenExternal", "canAutoPlay",
        "canScroll", "shouldAskPermission", "canReplay", "jsVPaidPresent", "flashVPaidPresent"}) {
    expected[flag] = false;
  }
  expected["isOMIDEnable"] = true;
  expected["trackers"] = ordered_json::object();
  expected["errorCode"] = 100;  // of the empty response
  EXPECT_EQ(ordered_json::parse(recordAsJson(*TamzoVastAd::initWithVast(""))), expected);
}

TEST_F(RecordJsonTest, TheLayoutsDifferInWhiteSpaceOnly) {
  const auto ad = TamzoVastAd::initWithVast("");
  const std::string compact = recordAsJson(*ad);
  const std::string indented = recordAsJson(*ad, JsonLayout::indented);
  EXPECT_EQ(compact.find('\n'), std::string::npos);
  EXPECT_TRUE(indented.starts_with("{\n  \"adID\": null,\n  \"vastTagURI\": \"\",\n")) << indented;
  EXPECT_EQ(ordered_json::parse(indented).dump(2), indented);
  EXPECT_EQ(ordered_json::parse(compact), ordered_json::parse(indented));
}

TEST_F(RecordJsonTest, NumbersAreTheShortestThatReadBack) {
  const auto ad = TamzoVastAd::initWithVast("");
  const struct {
    double value;
    const char* json;
  } doubles[] = {
      {0.1, "0.1"},
      {1.0 / 3, "0.3333333333333333"},
      {5000.0, "5000"},
      {-2.5, "-2.5"},
      {1e300, "1e+300"},
      {5e-324, "5e-324"},
      {123456789.0, "123456789"},
      {std::numeric_limits<double>::infinity(), "\"inf\""},
      {-std::numeric_limits<double>::infinity(), "\"-inf\""},
      {std::numeric_limits<double>::quiet_NaN(), "\"nan\""},
  };
  for (const auto& row : doubles) {
    ad->setBid(row.value);
    EXPECT_EQ(written(*ad, "bid", "trackers"), row.json);
  }
  const struct {
    float value;
    const char* json;
  } floats[] = {
      {0.1F, "0.1"},
      {1.0F / 3, "0.33333334"},
      {1.77F, "1.77"},
      {16777216.0F, "16777216"},
      {3.4028235e38F, "3.4028235e+38"},
      {std::numeric_limits<float>::infinity(), "\"inf\""},
      {-std::numeric_limits<float>::infinity(), "\"-inf\""},
      {std::numeric_limits<float>::quiet_NaN(), "\"nan\""},
  };
  for (const auto& row : floats) {
    ad->setOverlayDimensionRatioNode(row.value);
    EXPECT_EQ(written(*ad, "overlayDimensionRatioNode", "overlayUrl"), row.json);
  }
  ad->setViewabilityAction(std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(property(*ad, "viewabilityAction"), "-2147483648");
}

TEST_F(RecordJsonTest, TextsKeepEveryCharacter) {
  const auto ad = TamzoVastAd::initWithVast("");
  const struct {
    Text text;
    const char* json;
  } rows[] = {
      {Text(), "null"},
      {"", "\"\""},
      {" a\n", R"(" a\n")"},
      {"\"\\/", R"("\"\\/")"},
      {"\x01\x1F\t\r\b\f", R"("\u0001\u001f\t\r\b\f")"},
      {std::string_view("\0", 1), R"("\u0000")"},
      {"\xC3\xA9\xF0\x9F\x98\x80\xE2\x80\xA8", "\"\xC3\xA9\xF0\x9F\x98\x80\xE2\x80\xA8\""},
      {"<a>&amp;</a>", "\"<a>&amp;</a>\""},
      {"a\xFF"
       "b",
       "\"a\xEF\xBF\xBD"
       "b\""},
  };
  for (const auto& row : rows) {
    ad->setAdID(row.text);
    EXPECT_EQ(written(*ad, "adID", "vastTagURI"), row.json);
  }
}

TEST_F(RecordJsonTest, EveryContainerMayBeNil) {
  const auto ad = TamzoVastAd::initWithVast("");
  ad->setTrackers(nullptr);
  ad->setTrackersOffset(nullptr);
  ad->setCompanionAds(nullptr);
  ad->setMediaFiles(nullptr);
  ad->setExtraActions({});
  ad->setMeasurementProviderList(nullptr);
  ad->setCategoryArray(nullptr);
  ad->setMoatViewImpressionStr({});
  ad->setVastTagURI({});
  for (const char* name :
       {"trackers", "trackersOffset", "companionAds", "mediaFiles", "extraActions",
        "measurementProviderList", "categoryArray", "moatViewImpressionStr", "vastTagURI",
        "duration", "iconMap", "cards", "hotspotList", "vpaidXml"}) {
    EXPECT_EQ(property(*ad, name), "null") << name;
  }
  ad->setTrackers(std::make_shared<TrackerMap>());
  ad->trackers()->set("gone", nullptr);
  ad->trackers()->listFor("none");
  EXPECT_EQ(property(*ad, "trackers"), R"({"gone":null,"none":[]})");
}

TEST_F(RecordJsonTest, RecordsAreObjects) {
  const auto ad = TamzoVastAd::initWithVast("");
  ad->setDuration(TamzoAdDuration::initFromString(" 00:01:30.9\n"));
  EXPECT_EQ(property(*ad, "duration"), R"({"text":" 00:01:30.9\n","durationInSeconds":90})");

  ad->mediaFiles()->push_back(std::make_shared<TamzoMediaFile>());
  EXPECT_EQ(property(*ad, "mediaFiles"),
            R"([{"url":null,"id":null,"delivery":null,"type":null,"codec":null,)"
            R"("apiFramework":null,"width":null,"height":null,"bitrate":null,"minBitrate":null,)"
            R"("maxBitrate":null,"fileSize":null,"scalable":null,"maintainAspectRatio":null}])");

  ad->measurementProviderList()->push_back(TamzoMeasurementProviderModel::init());
  EXPECT_EQ(property(*ad, "measurementProviderList"),
            R"([{"vendor":null,"javaScriptResources":[],"executableResources":[],)"
            R"("verificationParameters":null,"trackers":{}}])");

  ad->companionAds()->push_back(TamzoCompanionAd::initWithNode(NodeList()));
  EXPECT_EQ(property(*ad, "companionAds"), R"([{"companions":[]}])");

  ad->setVpaidXml(TamzoVpaidXML::initWithVpaidWrapperNode(NodeList()));
  EXPECT_EQ(property(*ad, "vpaidXml"), R"({"vastVersion":null})");
  ad->vpaidXml()->setVastVersion("4.2");
  EXPECT_EQ(property(*ad, "vpaidXml"), R"({"vastVersion":"4.2"})");

  const auto event = TamzoTrackerEvent::init();
  ad->trackers()->listFor("e")->push_back(event);
  EXPECT_EQ(property(*ad, "trackers"), R"({"e":[{"url":null,"offset":null}]})");

  ad->categoryArray()->insert(ad->categoryArray()->end(), {Text("a"), Text(), Text("")});
  EXPECT_EQ(property(*ad, "categoryArray"), R"(["a",null,""])");
}

TEST_F(RecordJsonTest, TrackersKeepTheOrderOfTheirNames) {
  const auto ad = TamzoVastAd::initWithVast("");
  for (const char* name : {"z", "a", "", "M"}) {
    ad->trackers()->listFor(name);
  }
  EXPECT_EQ(property(*ad, "trackers"), R"({"z":[],"a":[],"":[],"M":[]})");
}

TEST_F(RecordJsonTest, IconsAndJsonStandSideBySide) {
  const auto ad = TamzoVastAd::initWithVast("");
  ad->setExtraActions(TamzoExtraActions::fromJson(R"([{"b":1,"a":[true,null,1.5,"x"]},"y",[]])"));
  ad->checkProgramExist(
      "P", parseDocument("<Icon program='P &amp; Q'><X a=\"1\"/></Icon>")->rootElement());
  const auto actions = ordered_json::parse(property(*ad, "extraActions"));
  ASSERT_EQ(actions.size(), 4U);
  EXPECT_EQ(nlohmann::json(actions[0]),
            nlohmann::json::parse(R"({"a":[true,null,1.5,"x"],"b":1})"));
  EXPECT_EQ(actions[1], "y");
  EXPECT_EQ(actions[2], ordered_json::array());
  EXPECT_EQ(
      actions[3].dump(),
      R"({"icon":{"program":"P & Q","xml":"<Icon program=\"P &amp; Q\"><X a=\"1\"/></Icon>"}})");
}

}  // namespace
}  // namespace tamzo::testing
