// What a companion holds, and which of them fills a slot.

#include "tamzo/sdk/TamzoCompanionAd.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using TamzoCompanionAdTest = SdkTest;

TEST_F(TamzoCompanionAdTest, ACompanionIsReadWhole) {
  const auto ad = freshRecord();
  ad->updateAllCompanionNodes(rootOf(R"(<I><Creatives><Creative><CompanionAds>)"
                                     R"(
    <Companion id="c" width="300px" height="wide" adSlotId="s" apiFramework="VPAID">
      <StaticResource creativeType="image/png"> https://c.example/1.png </StaticResource>
      <StaticResource><![CDATA[https://c.example/2]]></StaticResource>
      <IFrameResource>
        https://c.example/f </IFrameResource>
      <HTMLResource> <![CDATA[<b>x</b>]]> </HTMLResource>
      <AltText> alt </AltText>
      <CompanionClickThrough> https://c.example/go </CompanionClickThrough>
      <CompanionClickTracking>https://c.example/t1</CompanionClickTracking>
      <CompanionClickTracking id="2"> https://c.example/t2</CompanionClickTracking>
      <TrackingEvents>
        <Tracking event="creativeView"> https://c.example/v </Tracking>
        <Tracking event="creativeView" offset="00:00:05">https://c.example/w</Tracking>
        <Tracking event="close"/>
        <Tracking>https://c.example/nameless</Tracking>
      </TrackingEvents>
    </Companion></CompanionAds></Creative></Creatives></I>)"));
  EXPECT_EQ(nlohmann::ordered_json::parse(recordAsJson(*ad)).at("companionAds").dump(),
            R"([{"companions":[{"id":"c","width":300,"height":0,"adSlotId":"s",)"
            R"("apiFramework":"VPAID","altText":"alt","staticResources":[)"
            R"({"creativeType":"image/png","url":"https://c.example/1.png"},)"
            R"({"creativeType":null,"url":"https://c.example/2"}],)"
            R"("iframeResources":["https://c.example/f"],"htmlResources":[" <b>x</b> "],)"
            R"("clickThrough":"https://c.example/go",)"
            R"("clickTracking":["https://c.example/t1","https://c.example/t2"],)"
            R"("trackers":{"creativeView":[{"url":"https://c.example/v","offset":""},)"
            R"({"url":"https://c.example/w","offset":"5"}],"close":[]}}]}])");
}

TEST_F(TamzoCompanionAdTest, AnEmptyCompanionHoldsNothing) {
  const auto ad = TamzoCompanionAd::initWithNode(rootOf("<Companion/>"));
  ASSERT_EQ(ad->companions().size(), 1U);
  const TamzoCompanion& companion = ad->companions().front();
  EXPECT_TRUE(companion.id().isNil());
  EXPECT_FALSE(companion.width().has_value());
  EXPECT_FALSE(companion.height().has_value());
  EXPECT_TRUE(companion.clickThrough().isNil());
  EXPECT_FALSE(companion.hasResource());
  EXPECT_EQ(companion.trackers().size(), 0U);
  EXPECT_TRUE(TamzoCompanionAd::initWithNode(NodeList())->companions().empty());
}

// ---- Choosing for a slot -----------------------------------------------------------------------

TEST_F(TamzoCompanionAdTest, TheLargestThatFitsFillsASlotBest) {
  const auto shown = [](const std::string& attributes) {
    return "<Companion " + attributes + "><IFrameResource>u</IFrameResource></Companion>";
  };
  const struct {
    const char* name;
    std::string content;
    std::int32_t width;
    std::int32_t height;
    const char* best;  // "" for none
  } rows[] = {
      {"exact", shown("id='a' width='300' height='250'"), 300, 250, "a"},
      {"too wide", shown("id='a' width='301' height='250'"), 300, 250, ""},
      {"too high", shown("id='a' width='300' height='251'"), 300, 250, ""},
      {"the larger", shown("id='a' width='10' height='10'") + shown("id='b' width='20' height='6'"),
       300, 250, "b"},
      {"the first of equals",
       shown("id='a' width='10' height='20'") + shown("id='b' width='20' height='10'"), 300, 250,
       "a"},
      {"nothing to show",
       "<Companion id='a' width='300' height='250'/>" + shown("id='b' width='1' height='1'"), 300,
       250, "b"},
      {"no size", shown("id='a'") + shown("id='b' width='3'"), 300, 250, ""},
      {"no positive size",
       shown("id='a' width='0' height='5'") + shown("id='b' width='-5' height='-5'"), 300, 250, ""},
      {"an area beyond 32 bits",
       // In 32 bits it would come out as 1.
       shown("id='a' width='2' height='2'") +
           shown("id='b' width='2147483647' height='2147483647'"),
       2147483647, 2147483647, "b"},
      {"no companion", "", 300, 250, ""},
      {"no slot", shown("id='a' width='1' height='1'"), 0, 0, ""},
  };
  for (const auto& row : rows) {
    const auto document = parseDocument("<A>" + row.content + "</A>");
    const auto ad = TamzoCompanionAd::initWithNode(document->nodesForXPath("/A/Companion"));
    const TamzoCompanion* best = ad->bestForSlot(row.width, row.height);
    EXPECT_EQ(best == nullptr ? "" : best->id().view(), row.best) << row.name;
  }
}

TEST_F(TamzoCompanionAdTest, EveryKindOfResourceIsSomethingToShow) {
  for (const char* resource : {"StaticResource", "IFrameResource", "HTMLResource"}) {
    const auto ad = TamzoCompanionAd::initWithNode(
        rootOf(std::string("<Companion width='1' height='1'><") + resource + "/></Companion>"));
    EXPECT_NE(ad->bestForSlot(1, 1), nullptr) << resource;
  }
}

}  // namespace
}  // namespace tamzo::testing
