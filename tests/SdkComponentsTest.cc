// The SDK components that the parser calls, each by itself.

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <stdexcept>
#include <thread>

#include "tamzo/base/KeyIndex.h"
#include "tamzo/sdk/TamzoVastAdHelper.h"
#include "tamzo/sdk/TamzoWebSettings.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using SdkComponentsTest = SdkTest;

DDXMLElement elementOf(const std::string& xml) { return parseDocument(xml)->rootElement(); }

// ---- Times -------------------------------------------------------------------------------------

TEST_F(SdkComponentsTest, ADurationIsAClockTimeInWholeSeconds) {
  const struct {
    const char* text;
    std::int64_t seconds;
  } rows[] = {
      {"00:00:30", 30},
      {"00:00:30.000", 30},
      {"01:02:03.999", 3723},
      {" \n00:01:00\t", 60},
      {"0:0:5", 5},
      {"100:00:00", 360000},
      {"00:90:90", 5490},
      {"", 0},
      {"30", 0},
      {"00:30", 0},
      {"00:00:30:00", 0},
      {"-00:00:30", 0},
      {"00:00:-5", 0},
      {"00:00:", 0},
      {"::", 0},
      {"00:00:5s", 0},
      {"00:00:5.", 0},
      {"00:00:5.x", 0},
      {"00:00: 5", 0},
      {"50%", 0},
      {"garbage", 0},
      {"9999999999:0:0", std::int64_t{std::numeric_limits<std::int32_t>::max()} * 3600},
  };
  for (const auto& row : rows) {
    const auto duration = TamzoAdDuration::initFromString(row.text);
    EXPECT_EQ(duration->durationInSeconds(), row.seconds) << row.text;
    EXPECT_EQ(duration->text(), row.text);
  }
  EXPECT_EQ(TamzoAdDuration::initFromString(Text())->durationInSeconds(), 0);
}

TEST_F(SdkComponentsTest, ATrackersOffsetIsTextInWholeSeconds) {
  EXPECT_EQ(trackerOffset(Text()), "");
  EXPECT_EQ(trackerOffset(""), "");
  EXPECT_EQ(trackerOffset("00:00:10.500"), "10");
  EXPECT_EQ(trackerOffset(" 00:01:00 "), "60");
  EXPECT_EQ(trackerOffset("25%"), "0");
  EXPECT_EQ(trackerOffset(" "), "0");
}

// ---- Records of one element --------------------------------------------------------------------

TEST_F(SdkComponentsTest, AMediaFileIsItsTextAndAttributes) {
  const auto file = TamzoMediaFile::initWithNode(elementOf(
      "<MediaFile id='m' delivery='streaming' type='Video/MP4' codec='h264' apiFramework='VPAID'"
      " width='300px' height='' bitrate='-1' minBitrate='x' maxBitrate='99999999999' fileSize='7'"
      " scalable='TRUE' maintainAspectRatio='0'>\n <![CDATA[ https://c.example/a ]]>\n"
      "</MediaFile>"));
  EXPECT_EQ(file->url(), "https://c.example/a");
  EXPECT_EQ(file->id(), "m");
  EXPECT_EQ(file->delivery(), "streaming");
  EXPECT_EQ(file->type(), "Video/MP4");
  EXPECT_EQ(file->codec(), "h264");
  EXPECT_EQ(file->apiFramework(), "VPAID");
  EXPECT_EQ(file->width(), 300);
  EXPECT_EQ(file->height(), 0);
  EXPECT_EQ(file->bitrate(), -1);
  EXPECT_EQ(file->minBitrate(), 0);
  EXPECT_EQ(file->maxBitrate(), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(file->fileSize(), 7);
  EXPECT_EQ(file->scalable(), true);
  EXPECT_EQ(file->maintainAspectRatio(), false);

  const auto bare = TamzoMediaFile::initWithNode(elementOf("<MediaFile/>"));
  EXPECT_EQ(bare->url(), "");
  EXPECT_TRUE(bare->id().isNil() && bare->delivery().isNil() && bare->type().isNil());
  EXPECT_TRUE(bare->codec().isNil() && bare->apiFramework().isNil());
  EXPECT_FALSE(bare->width() || bare->height() || bare->bitrate() || bare->minBitrate());
  EXPECT_FALSE(bare->maxBitrate() || bare->fileSize() || bare->scalable() ||
               bare->maintainAspectRatio());
}

TEST_F(SdkComponentsTest, AVerificationIsReadWhole) {
  const auto provider = TamzoMeasurementProviderModel::init()->createMeasurementProviderFromXML(
      rootOf(R"(<Verification vendor="v.example-omid">
        <JavaScriptResource apiFramework="omid" browserOptional="true"> https://v.example/1.js
        </JavaScriptResource>
        <JavaScriptResource browserOptional=""><![CDATA[https://v.example/2.js]]></JavaScriptResource>
        <JavaScriptResource/>
        <ExecutableResource apiFramework="omid" type="x"> https://v.example/exe </ExecutableResource>
        <ExecutableResource/>
        <TrackingEvents>
          <Tracking event="verificationNotExecuted"> https://v.example/no?r=[REASON] </Tracking>
          <Tracking event="verificationNotExecuted">https://v.example/2</Tracking>
        </TrackingEvents>
        <VerificationParameters> {"a": 1}
</VerificationParameters>
        <VerificationParameters>second</VerificationParameters>
      </Verification>)"));
  EXPECT_EQ(provider->vendor(), "v.example-omid");
  const auto scripts = provider->javaScriptResources();
  ASSERT_EQ(scripts.size(), 3U);
  EXPECT_EQ(scripts[0].url, "https://v.example/1.js");
  EXPECT_EQ(scripts[0].apiFramework, "omid");
  EXPECT_EQ(scripts[0].browserOptional, true);
  EXPECT_EQ(scripts[1].url, "https://v.example/2.js");
  EXPECT_TRUE(scripts[1].apiFramework.isNil());
  EXPECT_EQ(scripts[1].browserOptional, false);
  EXPECT_EQ(scripts[2].url, "");
  EXPECT_FALSE(scripts[2].browserOptional.has_value());
  const auto executables = provider->executableResources();
  ASSERT_EQ(executables.size(), 2U);
  EXPECT_EQ(executables[0].url, "https://v.example/exe");
  EXPECT_EQ(executables[0].apiFramework, "omid");
  EXPECT_EQ(executables[0].type, "x");
  EXPECT_TRUE(executables[1].type.isNil());
  EXPECT_EQ(provider->verificationParameters(), " {\"a\": 1}\n");
  const TrackerList refused = provider->trackers().find("verificationNotExecuted");
  ASSERT_EQ(refused->size(), 2U);
  EXPECT_EQ(refused->front()->url(), "https://v.example/no?r=[REASON]");
}

TEST_F(SdkComponentsTest, AnEmptyVerificationIsStillAProvider) {
  for (const NodeList& nodes : {rootOf("<Verification/>"), NodeList(), NodeList::makeEmpty()}) {
    const auto provider =
        TamzoMeasurementProviderModel::init()->createMeasurementProviderFromXML(nodes);
    ASSERT_NE(provider, nullptr);
    EXPECT_TRUE(provider->vendor().isNil());
    EXPECT_TRUE(provider->javaScriptResources().empty());
    EXPECT_TRUE(provider->executableResources().empty());
    EXPECT_TRUE(provider->verificationParameters().isNil());
    EXPECT_EQ(provider->trackers().size(), 0U);
  }
}

TEST_F(SdkComponentsTest, ACardIsNeverRefused) {
  EXPECT_EQ(TamzoCard::initWithNode(elementOf("<Card/>"))->node().XMLString(), "<Card/>");
  EXPECT_FALSE(TamzoCard::initWithNode(DDXMLElement())->node());
}

TEST_F(SdkComponentsTest, AHotspotWithNothingToReadIsRefused) {
  const struct {
    const char* xml;
    bool isRead;
  } rows[] = {
      {"<H/>", false},
      {"<H></H>", false},
      {"<H> \n\t\xC2\xA0\xE3\x80\x80</H>", false},
      {"<H><!-- x --></H>", false},
      {"<H><?x y?></H>", false},
      {"<H><![CDATA[ ]]></H>", false},
      {"<H>x</H>", true},
      {"<H><![CDATA[x]]></H>", true},
      {"<H id=''/>", true},
      {"<H><X/></H>", true},
      {"<H> <!-- x --> <X/></H>", true},
  };
  for (const auto& row : rows) {
    const auto hotspot = TamzoHotspot360Info::initWithNode(elementOf(row.xml));
    EXPECT_EQ(hotspot != nullptr, row.isRead) << row.xml;
    if (hotspot != nullptr) {
      EXPECT_EQ(hotspot->node().name(), "H");
    }
  }
  EXPECT_EQ(TamzoHotspot360Info::initWithNode(DDXMLElement()), nullptr);
}

TEST_F(SdkComponentsTest, AKeyPathLeadsToTheFirstElement) {
  const DDXMLElement root = elementOf(
      "<L><Icons id='1'/><Icons><Icon id='2'><C>c</C></Icon><Icon id='3'/></Icons>"
      "<\xC3\xA9><e\xC3\xA9-1/></\xC3\xA9></L>");
  const struct {
    const char* path;
    const char* xml;  // nullptr for nil
  } rows[] = {
      {"Icons", "<Icons id=\"1\"/>"},
      {"Icons.Icon.C", "<C>c</C>"},
      {"\xC3\xA9.e\xC3\xA9-1", "<e\xC3\xA9-1/>"},
      {"Icon", nullptr},
      {"L", nullptr},
      {"icons", nullptr},
      {"", nullptr},
      {".", nullptr},
      {"Icons.", nullptr},
      {".Icons", nullptr},
      {"Icons..C", nullptr},
      {"Icons/Icon", nullptr},
      {"/L", nullptr},
      {"..", nullptr},
      {"*", nullptr},
      {"Icons.@id", nullptr},
      {"\xC3\xA9.*", nullptr},
      {"\xC3\xA9..e", nullptr},
      {"\xC3", nullptr},
      {"\xE2\x82\xAC", nullptr},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(TamzoVastAdHelper::getFirstElement(root, row.path).XMLString(), Text(row.xml))
        << row.path;
    EXPECT_EQ(TamzoVastAd::getNodeAsStringValue(root, row.path).XMLString(), Text(row.xml))
        << row.path;
    EXPECT_FALSE(TamzoVastAdHelper::getFirstElement(DDXMLElement(), row.path)) << row.path;
  }
}

// ---- Trackers ----------------------------------------------------------------------------------

TEST_F(SdkComponentsTest, ATrackerMapKeepsNamesInOrder) {
  TrackerMap map;
  EXPECT_EQ(map.find("a"), nullptr);
  const TrackerList b = map.listFor("b");
  EXPECT_EQ(map.listFor("b"), b) << "made once";
  map.listFor("a");
  const TrackerList other = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  map.set("b", other);
  EXPECT_EQ(map.find("b"), other);
  EXPECT_EQ(map.begin()->name, "b") << "replacing keeps the place";
  map.set("c", nullptr);
  EXPECT_EQ(map.find("c"), nullptr);
  EXPECT_EQ(map.size(), 3U);
  EXPECT_NE(map.listFor("c"), nullptr) << "a list that was taken away is made anew";
  EXPECT_EQ(map.size(), 3U);
  EXPECT_THROW(map.listFor(Text()), std::invalid_argument);
  EXPECT_THROW(map.set(Text(), nullptr), std::invalid_argument);
  const TrackerList nameless = map.listFor("");
  EXPECT_EQ(map.find(""), nameless) << "an empty name is a name";
}

TEST_F(SdkComponentsTest, AHundredThousandNamesStayApart) {
  TrackerMap map;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 100'000; ++i) {
      map.listFor("name" + std::to_string(i))->push_back(TamzoTrackerEvent::init());
    }
  }
  ASSERT_EQ(map.size(), 100'000U);
  int i = 0;
  for (const TrackerMap::Entry& entry : map) {
    ASSERT_EQ(entry.name, Text("name" + std::to_string(i)));
    ASSERT_EQ(entry.events->size(), 2U);
    ASSERT_EQ(map.find(entry.name), entry.events);
    ++i;
  }
  EXPECT_EQ(map.find("name100000"), nullptr);
}

TEST_F(SdkComponentsTest, AKeyIndexFindsTheLastPositionEntered) {
  // Beyond a few keys the index changes over to hashing; every count around that must work.
  for (std::size_t count = 0; count <= 40; ++count) {
    std::vector<std::string> keys;
    for (std::size_t i = 0; i < count; ++i) {
      keys.push_back(std::string(i, 'k'));
    }
    KeyIndex index;
    for (std::size_t i = 0; i < count; ++i) {
      index.set(keys[i], i);
    }
    for (std::size_t i = 0; i < count; i += 3) {
      index.set(keys[i], i + 1000);
    }
    for (std::size_t i = 0; i < count; ++i) {
      EXPECT_EQ(index.find(std::string(i, 'k')), i % 3 == 0 ? i + 1000 : i) << count;
    }
    EXPECT_EQ(index.find("other"), std::nullopt) << count;
    KeyIndex moved = std::move(index);
    EXPECT_EQ(moved.find("other"), std::nullopt) << count;
    EXPECT_EQ(moved.find("").has_value(), count > 0);
  }
}

TEST_F(SdkComponentsTest, AKeyIndexTellsNearlyEqualKeysApart) {
  using namespace std::string_view_literals;
  const std::string_view keys[] = {
      "",          "\0"sv,     "\0\0"sv,   "1234567", "1234567\0"sv, "12345678",
      "1234567\1", "abcdefgh", "hgfedcba", "\xFF",    "\xFF\xFF",    "12345671234567",
      "a",         "A",        "a ",       " a",      "ab",          "ba",
      "aa",        "aaa"};
  KeyIndex index;
  for (std::size_t i = 0; i < std::size(keys); ++i) {
    index.set(keys[i], i);
  }
  for (std::size_t i = 0; i < std::size(keys); ++i) {
    EXPECT_EQ(index.find(keys[i]), i);
  }
}

// ---- State, log, assets ------------------------------------------------------------------------

TEST_F(SdkComponentsTest, TheStateHasDefaults) {
  EXPECT_TRUE(TamzoState::getBlockedAdCategories().isNil());
  EXPECT_EQ(TamzoState::getSessionId(), "");
  EXPECT_EQ(TamzoState::getTamzoWebSettings(), nullptr);
  HostState source;
  source.sessionId = [] { return Text(); };
  source.blockedAdCategories = [] { return Text(" a,b "); };
  useState(source);
  EXPECT_EQ(TamzoState::getSessionId(), "") << "never nil";
  EXPECT_EQ(TamzoState::getBlockedAdCategories(), " a,b ");
  useState({});
  EXPECT_TRUE(TamzoState::getBlockedAdCategories().isNil());
}

TEST_F(SdkComponentsTest, TheStateIsSafeFromSeveralThreads) {
  std::vector<std::thread> threads;
  std::atomic<int> bad{0};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t, &bad] {
      for (int i = 0; i < 500; ++i) {
        HostState source;
        source.sessionId = [text = Text(std::string(32, static_cast<char>('a' + t)))] {
          return text;
        };
        useState(std::move(source));
        const Text id = TamzoState::getSessionId();
        bad += id.view().size() != 32 || id.view().front() != id.view().back() ? 1 : 0;
        TamzoState::setTamzoWebSettings(TamzoWebSettings::init());
        bad += TamzoState::getTamzoWebSettings() == nullptr ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(bad, 0);
}

TEST_F(SdkComponentsTest, TheLogIsSilentUntilSwitchedOn) {
  std::vector<std::string> lines;
  writeLogTo([&](std::string_view line) { lines.emplace_back(line); });
  int computed = 0;
  const auto argument = [&computed] {
    ++computed;
    return Text("x");
  };
  TAMZO_LOG("line %@", argument());
  TamzoLogger::printLog("plain");
  EXPECT_TRUE(lines.empty());
  EXPECT_EQ(computed, 0) << "arguments of a line that nobody reads are not computed";
  isTamzoDebugEnabled = true;
  TAMZO_LOG("line %@ %ld", argument(), std::int64_t{-7});
  TAMZO_LOG("no arguments");
  TamzoLogger::printLog("plain %@");
  EXPECT_EQ(lines, (std::vector<std::string>{"[TAMZO-LOG][v8.0.0 p0] line x -7",
                                             "[TAMZO-LOG][v8.0.0 p0] no arguments", "plain %@"}));
}

TEST_F(SdkComponentsTest, FormatsAreFilledInOrder) {
  EXPECT_EQ(TamzoLogger::format("", {}), "");
  EXPECT_EQ(TamzoLogger::format("%@%@", {Text("a"), Text()}), "a(null)");
  EXPECT_EQ(TamzoLogger::format("%@", {Text("%@ %ld")}), "%@ %ld") << "values are not formats";
  EXPECT_EQ(TamzoLogger::format("%@ %@", {Text("a")}), "a %@");
  EXPECT_EQ(TamzoLogger::format("100% %d %", {Text("a")}), "100% %d %");
  EXPECT_EQ(TamzoLogger::format("%ld", {std::numeric_limits<std::int64_t>::min()}),
            "-9223372036854775808");
}

TEST_F(SdkComponentsTest, TheTemplateOfAHostReplacesTheSdks) {
  const Text own = TamzoAssetsManager::getVpaidWrapperData();
  EXPECT_TRUE(own.hasCharacters());
  useTemplateFrom([] { return Text("mine"); });
  EXPECT_EQ(TamzoAssetsManager::getVpaidWrapperData(), "mine");
  useTemplateFrom([] { return Text(); });
  EXPECT_TRUE(TamzoAssetsManager::getVpaidWrapperData().isNil());
  useTemplateFrom({});
  EXPECT_EQ(TamzoAssetsManager::getVpaidWrapperData(), own);
}

}  // namespace
}  // namespace tamzo::testing
