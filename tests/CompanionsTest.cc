// Companions of a chain, the choice among them, and the clicks of an icon.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tamzo/sdk/TamzoVastAdHelper.h"
#include "tamzo/vast/RecordJson.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using CompanionsTest = SdkTest;

std::shared_ptr<TamzoVastAd> freshRecord() { return TamzoVastAd::initWithVast(""); }

// "id id; id", one group for each document.
std::string idsOf(const TamzoVastAd& ad) {
  std::string ids;
  for (const auto& document : *ad.companionAds()) {
    ids += ids.empty() ? "" : "; ";
    for (const TamzoCompanion& companion : document->companions()) {
      ids += companion.id().view();
    }
  }
  return ids;
}

std::string companions(const std::string& content) {
  return "<Creatives><Creative><CompanionAds>" + content + "</CompanionAds></Creative></Creatives>";
}

std::string vast(const std::string& version, const std::string& ad) {
  return "<VAST version='" + version + "'><Ad>" + ad + "</Ad></VAST>";
}

std::string wrapper(const std::string& content) {
  return "<Wrapper><VASTAdTagURI>http://n.example/</VASTAdTagURI>" + content + "</Wrapper>";
}

const std::string kLinear =
    "<Creatives><Creative><Linear><MediaFiles><MediaFile type='video/mp4'>u</MediaFile>"
    "</MediaFiles></Linear></Creative></Creatives>";

// ---- Collecting --------------------------------------------------------------------------------

TEST_F(CompanionsTest, CompanionsOfOneDocumentMakeOneEntry) {
  const struct {
    const char* name;
    std::string content;
    const char* ids;
  } rows[] = {
      {"none", "", ""},
      {"no Companion", companions(""), ""},
      {"three", companions("<Companion id='1'/><Companion id='2'/><Companion id='3'/>"), "123"},
      {"over several creatives",
       "<Creatives><Creative><CompanionAds><Companion id='1'/></CompanionAds></Creative><Creative/>"
       "<Creative><CompanionAds><Companion id='2'/></CompanionAds>"
       "<CompanionAds><Companion id='3'/></CompanionAds></Creative></Creatives>"
       "<Creatives><Creative><CompanionAds><Companion "
       "id='4'/></CompanionAds></Creative></Creatives>",
       "1234"},
      {"directly under Creative", "<Creatives><Creative><Companion id='1'/></Creative></Creatives>",
       ""},
      {"directly under the ad", "<CompanionAds><Companion id='1'/></CompanionAds>", ""},
      {"deeper", companions("<More><Companion id='1'/></More>"), ""},
      {"names by case", companions("<companion id='1'/>"), ""},
  };
  for (const auto& row : rows) {
    const auto ad = freshRecord();
    ad->updateAllCompanionNodes(rootOf("<I>" + row.content + "</I>"));
    EXPECT_EQ(idsOf(*ad), row.ids) << row.name;
    EXPECT_EQ(ad->companionAds()->size(), *row.ids == '\0' ? 0U : 1U) << row.name;
    EXPECT_EQ(ad->getMostSuitableCompanion(),
              *row.ids == '\0' ? nullptr : ad->companionAds()->front())
        << row.name;
  }
}

TEST_F(CompanionsTest, AWrappersCompanionsComeFirstAndAreTheMostSuitable) {
  for (const char* version : {"2.0", "3.0", "4.0"}) {
    const std::string inLine =
        vast(version, "<InLine>" + companions("<Companion id='i'/>") + kLinear + "</InLine>");
    readUrlsWith([&](const Text&) { return inLine; });
    const auto both =
        TamzoVastAd::initWithVast(vast(version, wrapper(companions("<Companion id='w'/>"))));
    EXPECT_EQ(idsOf(*both), "w; i") << version;
    EXPECT_EQ(both->getMostSuitableCompanion(), both->companionAds()->at(0)) << version;
    const auto inner = TamzoVastAd::initWithVast(vast(version, wrapper("")));
    EXPECT_EQ(idsOf(*inner), "i") << version;
  }
}

TEST_F(CompanionsTest, AnAdWithoutALinearStillHasItsCompanions) {
  for (const char* version : {"2.0", "3.0", "4.0"}) {
    const auto ad = TamzoVastAd::initWithVast(
        vast(version, "<InLine>" + companions("<Companion id='i'/>") + "</InLine>"));
    EXPECT_EQ(ad->errorCode(), 405) << version;
    EXPECT_EQ(idsOf(*ad), "i") << version;
  }
}

TEST_F(CompanionsTest, ASecondParseStartsWithoutCompanions) {
  const auto ad = TamzoVastAd::initWithVast(
      vast("3.0", "<InLine>" + companions("<Companion id='i'/>") + kLinear + "</InLine>"));
  const auto old = ad->companionAds();
  ad->parseVast(vast("3.0", "<InLine>" + kLinear + "</InLine>"));
  EXPECT_EQ(idsOf(*ad), "");
  EXPECT_EQ(old->size(), 1U);
}

TEST_F(CompanionsTest, WithoutNodesOrAListThereIsNone) {
  const auto ad = freshRecord();
  ad->updateAllCompanionNodes(NodeList());
  ad->updateAllCompanionNodes(NodeList::makeEmpty());
  EXPECT_TRUE(ad->companionAds()->empty());
  const auto document = parseDocument("<A><I/><I>" + companions("<Companion/>") + "</I></A>");
  ad->updateAllCompanionNodes(document->nodesForXPath("/A/I"));
  EXPECT_TRUE(ad->companionAds()->empty()) << "only the first ad is searched";
  ad->setCompanionAds(nullptr);
  EXPECT_EQ(ad->getMostSuitableCompanion(), nullptr);
}

TEST_F(CompanionsTest, AHundredThousandCompanionsStayInOrder) {
  std::string content;
  for (int i = 0; i < 100'000; ++i) {
    content += "<Companion id='" + std::to_string(i) + "'/>";
  }
  const auto ad = freshRecord();
  ad->updateAllCompanionNodes(rootOf("<I>" + companions(content) + "</I>"));
  ASSERT_EQ(ad->companionAds()->at(0)->companions().size(), 100'000U);
  EXPECT_EQ(ad->companionAds()->at(0)->companions().back().id(), "99999");
}

// ---- What a companion holds --------------------------------------------------------------------

TEST_F(CompanionsTest, ACompanionIsReadWhole) {
  const auto ad = freshRecord();
  ad->updateAllCompanionNodes(rootOf("<I>" + companions(R"(
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
    </Companion>)") + "</I>"));
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

TEST_F(CompanionsTest, AnEmptyCompanionHoldsNothing) {
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

TEST_F(CompanionsTest, TheLargestThatFitsFillsASlotBest) {
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
       shown("id='a' width='2147483647' height='2'") +
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

TEST_F(CompanionsTest, EveryKindOfResourceIsSomethingToShow) {
  for (const char* resource : {"StaticResource", "IFrameResource", "HTMLResource"}) {
    const auto ad = TamzoCompanionAd::initWithNode(
        rootOf(std::string("<Companion width='1' height='1'><") + resource + "/></Companion>"));
    EXPECT_NE(ad->bestForSlot(1, 1), nullptr) << resource;
  }
}

// ---- Clicks of an icon -------------------------------------------------------------------------

TEST_F(CompanionsTest, TheClicksOfTheFirstIconAreMapped) {
  const struct {
    const char* name;
    const char* xml;
    const char* map;
  } rows[] = {
      {"both",
       "<L><Icons><Icon><IconClicks><IconClickThrough> t </IconClickThrough><IconClickTracking>k"
       "</IconClickTracking></IconClicks></Icon></Icons></L>",
       R"({"iconClickThrough":{"xml":"<IconClickThrough> t </IconClickThrough>","text":" t "},)"
       R"("iconClickTracking":{"xml":"<IconClickTracking>k</IconClickTracking>","text":"k"}})"},
      {"no tracking",
       "<L><Icons><Icon><IconClicks><IconClickThrough/></IconClicks></Icon></Icons></L>",
       R"({"iconClickThrough":{"xml":"<IconClickThrough/>","text":""}})"},
      {"no click-through",
       "<L><Icons><Icon><IconClicks><IconClickTracking id='1'/><IconClickTracking id='2'/>"
       "</IconClicks></Icon></Icons></L>",
       R"({"iconClickTracking":{"xml":"<IconClickTracking id=\"1\"/>","text":""}})"},
      {"the second icon does not count",
       "<L><Icons><Icon/><Icon><IconClicks><IconClickThrough/></IconClicks></Icon></Icons></L>",
       "{}"},
      {"no icons", "<L/>", "{}"},
      {"an icon elsewhere", "<L><Icon><IconClicks><IconClickThrough/></IconClicks></Icon></L>",
       "{}"},
  };
  for (const auto& row : rows) {
    const auto ad = freshRecord();
    EXPECT_EQ(ad->iconMap(), nullptr);
    ad->getImageAd(parseDocument(row.xml)->rootElement());
    EXPECT_EQ(nlohmann::json::parse(recordAsJson(*ad)).at("iconMap"),
              nlohmann::json::parse(row.map))
        << row.name;
  }
}

TEST_F(CompanionsTest, EveryRunMakesANewMap) {
  const auto ad = freshRecord();
  ad->getImageAd(parseDocument("<L><Icons><Icon><IconClicks><IconClickThrough>t</IconClickThrough>"
                               "</IconClicks></Icon></Icons></L>")
                     ->rootElement());
  const auto old = ad->iconMap();
  ad->getImageAd(DDXMLElement());
  EXPECT_NE(ad->iconMap(), old);
  EXPECT_TRUE(ad->iconMap()->empty());
  EXPECT_EQ(old->at("iconClickThrough").stringValue(), "t") << "outlives its document";
}

}  // namespace
}  // namespace tamzo::testing
