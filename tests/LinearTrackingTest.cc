// Tracking events, impressions, the ad id, clicks and icons of the linear creative.

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using Pairs = UrlsAndOffsets;

class LinearTracking : public UpdaterTest {
 protected:
  std::vector<std::string> trackerNames() const {
    std::vector<std::string> names;
    for (const auto& entry : *ad_->trackers()) {
      names.emplace_back(entry.name.view());
    }
    return names;
  }
};

using Names = std::vector<std::string>;

NodeList linearWithTracking(const std::string& tracking) {
  return rootOf("<Linear><TrackingEvents>" + tracking + "</TrackingEvents></Linear>");
}

// ---- Tracking events -----------------------------------------------------------------------

TEST_F(LinearTracking, EventsAreListedByNameInDocumentOrder) {
  ad_->updateTrackers(
      linearWithTracking("<Tracking event='start'>a</Tracking>"
                         "<Tracking event='midpoint'>b</Tracking>"
                         "<Tracking event='start'>c</Tracking>"
                         "<Tracking event='own-Name 1'>d</Tracking>"
                         "<Tracking event='Start'>e</Tracking>"));
  EXPECT_EQ(trackerNames(), (Names{"start", "midpoint", "own-Name 1", "Start", "ClickTracking"}));
  EXPECT_EQ(trackers("start"), (Pairs{{"a", ""}, {"c", ""}}));
  EXPECT_EQ(trackers("Start"), (Pairs{{"e", ""}}));
}

TEST_F(LinearTracking, OffsetsAreWholeSecondsAsText) {
  const std::vector<std::pair<std::string, std::string>> rows{
      {"offset='00:00:10'", "10"},
      {"offset='00:01:00.900'", "60"},
      {"offset='01:00:00'", "3600"},
      {"offset='00:00:00'", "0"},
      {"offset='25%'", "0"},
      {"offset='soon'", "0"},
      {"offset=''", ""},
      {"", ""},
  };
  for (const auto& [attribute, offset] : rows) {
    ad_ = TamzoVastAd::initWithVast("");
    ad_->updateTrackers(
        linearWithTracking("<Tracking event='progress' " + attribute + ">u</Tracking>"));
    EXPECT_EQ(trackers("progress"), (Pairs{{"u", offset}})) << attribute;
  }
}

TEST_F(LinearTracking, AnOffsetThatIsListedIsTrackedAllTheSame) {
  ad_->trackersOffset()->emplace_back("00:00:10");
  const std::string tracking = "<Tracking event='progress' offset='00:00:10'>u</Tracking>";
  ad_->updateTrackers(linearWithTracking(tracking + tracking));
  EXPECT_EQ(trackers("progress").size(), 2U);
  EXPECT_EQ(ad_->trackersOffset()->size(), 1U);
}

TEST_F(LinearTracking, AnEventWithoutAUrlHasAnEmptyList) {
  ad_->updateTrackers(
      linearWithTracking("<Tracking event='complete'/>"
                         "<Tracking event=''>u</Tracking>"));
  EXPECT_EQ(trackers("complete"), Pairs{});
  EXPECT_EQ(trackers(""), (Pairs{{"u", ""}})) << "an empty name is a name";
}

TEST_F(LinearTracking, UrlsAreNotTrimmed) {
  ad_->updateTrackers(
      rootOf("<Linear><TrackingEvents><Tracking event='start'>\n a&amp;b </Tracking>"
             "</TrackingEvents><VideoClicks><ClickTracking> \n </ClickTracking>"
             "<ClickTracking> <![CDATA[ c ]]></ClickTracking><ClickTracking/>"
             "</VideoClicks></Linear>"));
  EXPECT_EQ(trackers("start"), (Pairs{{"\n a&b ", ""}}));
  EXPECT_EQ(trackers("ClickTracking"), (Pairs{{" \n ", ""}, {"  c ", ""}}));
}

TEST_F(LinearTracking, AnEventWithoutANameThrowsAndKeepsWhatCameBefore) {
  EXPECT_THROW(ad_->updateTrackers(linearWithTracking("<Tracking event='start'>a</Tracking>"
                                                      "<Tracking>b</Tracking>"
                                                      "<Tracking event='end'>c</Tracking>")),
               std::exception);
  EXPECT_EQ(trackerNames(), Names{"start"});
}

TEST_F(LinearTracking, ClickTrackingHasAListEvenWithoutClicks) {
  ad_->updateTrackers(NodeList());
  ad_->updateTrackers(NodeList::makeEmpty());
  EXPECT_EQ(trackerNames(), Names{}) << "nothing at all without a Linear";
  ad_->updateTrackers(rootOf("<Linear/>"));
  EXPECT_EQ(trackerNames(), Names{"ClickTracking"});
  EXPECT_EQ(trackers("ClickTracking"), Pairs{});
}

TEST_F(LinearTracking, CallsAddUpAndOnlyTheFirstLinearCounts) {
  ad_->updateTrackers(
      parseDocument("<C><Linear><TrackingEvents><Tracking event='start'>a</Tracking>"
                    "</TrackingEvents></Linear><Linear><TrackingEvents>"
                    "<Tracking event='end'>b</Tracking></TrackingEvents></Linear>"
                    "</C>")
          ->nodesForXPath("/C/Linear"));
  const TrackerList list = ad_->trackers()->find("start");
  ad_->updateTrackers(linearWithTracking("<Tracking event='start'>c</Tracking>"));
  EXPECT_EQ(trackerNames(), (Names{"start", "ClickTracking"}));
  EXPECT_EQ(trackers("start"), (Pairs{{"a", ""}, {"c", ""}}));
  EXPECT_EQ(ad_->trackers()->find("start"), list) << "one list, appended to";
}

// ---- Ad id, impressions and clicks ---------------------------------------------------------

TEST_F(LinearTracking, TheAdIdIsTakenAsItStands) {
  struct Row {
    const char* ad;
    const char* id;
    bool isLogged;
  };
  const std::vector<Row> rows{
      {"<Ad id='7'/>", "7", false},     {"<Ad id=' 7 '/>", " 7 ", false},
      {"<Ad id=''/>", "", false},       {"<Ad/>", "before", true},
      {"<Ad ID='7'/>", "before", true}, {"<Ad x:id='7' xmlns:x='urn:x'/>", "before", true},
  };
  collectLog();
  for (const Row& row : rows) {
    ad_->setAdID("before");
    const std::size_t before = log().size();
    ad_->updateAdID(rootOf(row.ad));
    EXPECT_EQ(ad_->adID(), Text(row.id)) << row.ad;
    EXPECT_EQ(log().size() - before, row.isLogged ? 1U : 0U) << row.ad;
  }
  for (const NodeList& none : {NodeList(), NodeList::makeEmpty()}) {
    const std::size_t before = log().size();
    ad_->updateAdID(none);
    EXPECT_EQ(log().size(), before + 1);
  }
  EXPECT_EQ(log().back(), "[TAMZO-LOG][v8.0.0 p0] no valid ad-id!");
}

TEST_F(LinearTracking, ImpressionsAddUpEmptyOnesIncluded) {
  collectLog();
  ad_->updateImpressions(NodeList());
  EXPECT_EQ(trackers("Impression"), Pairs{}) << "the list is there even without an ad";
  ad_->updateImpressions(rootOf("<InLine/>"));
  EXPECT_TRUE(log().empty());
  ad_->updateImpressions(rootOf("<Wrapper><Impression> a </Impression><Impression/></Wrapper>"));
  ad_->updateImpressions(rootOf("<InLine><Impression id='1'><![CDATA[b]]></Impression></InLine>"));
  EXPECT_EQ(trackers("Impression"), (Pairs{{" a ", ""}, {"", ""}, {"b", ""}}));
  EXPECT_EQ(log(), (Names{"[TAMZO-LOG][v8.0.0 p0] impressions added!",
                          "[TAMZO-LOG][v8.0.0 p0] impressions added!"}));
}

NodeList linearWithClicks(const std::string& clicks) {
  return rootOf("<Linear><VideoClicks>" + clicks + "</VideoClicks></Linear>");
}

TEST_F(LinearTracking, TheLastClickThroughWithTextWins) {
  const std::vector<std::pair<std::string, std::string>> rows{
      {"<ClickThrough>A</ClickThrough><ClickThrough>B</ClickThrough>", "B"},
      {"<ClickThrough>A</ClickThrough><ClickThrough/>", "A"},
      {"<ClickThrough>A</ClickThrough><ClickThrough> </ClickThrough>", " "},
      {"<ClickThrough> A\n</ClickThrough>", " A\n"},
      {"<ClickThrough/>", "before"},
      {"", "before"},
  };
  collectLog();
  for (const auto& [clicks, url] : rows) {
    ad_->setClickThrough("before");
    const std::size_t before = log().size();
    ad_->updateLinearClickThrough(linearWithClicks(clicks));
    EXPECT_EQ(ad_->clickThrough(), Text(url)) << clicks;
    ASSERT_EQ(log().size(), before + 1) << clicks;
    EXPECT_EQ(log().back(), "[TAMZO-LOG][v8.0.0 p0] Click Through updated!");
  }
  const std::size_t before = log().size();
  ad_->updateLinearClickThrough(NodeList());
  ad_->updateLinearClickThrough(NodeList::makeEmpty());
  EXPECT_EQ(log().size(), before);
}

TEST_F(LinearTracking, CustomClicksReplaceThoseBefore) {
  ad_->updateCustomClickTracker(NodeList());
  ad_->updateCustomClickTracker(linearWithClicks(""));
  ad_->updateCustomClickTracker(linearWithClicks("<CustomClick/>"));
  EXPECT_EQ(trackerNames(), Names{});
  ad_->updateCustomClickTracker(
      linearWithClicks("<CustomClick> a </CustomClick><CustomClick/><CustomClick>b</CustomClick>"));
  EXPECT_EQ(trackers("CustomClickTracker"), (Pairs{{" a ", ""}, {"b", ""}}));
  ad_->updateCustomClickTracker(linearWithClicks("<CustomClick/><CustomClick/>"));
  EXPECT_EQ(trackers("CustomClickTracker").size(), 2U) << "nothing to replace them by";
  ad_->updateCustomClickTracker(linearWithClicks("<CustomClick>c</CustomClick>"));
  EXPECT_EQ(trackers("CustomClickTracker"), (Pairs{{"c", ""}}));
}

// ---- Icons ---------------------------------------------------------------------------------

class Icons : public LinearTracking {
 protected:
  // Programs and ids of the icons in the record.
  Pairs icons() const {
    Pairs found;
    for (const auto& entry : *ad_->extraActions().list()) {
      const auto& icon = std::get<DDXMLElement>(entry);
      found.emplace_back(icon.attributeValue("program").view(), icon.attributeValue("id").view());
    }
    return found;
  }
  static NodeList linearWith(const std::string& icons) {
    return rootOf("<Linear><Icons>" + icons + "</Icons></Linear>");
  }
};

TEST_F(Icons, ALaterOneOfAProgramTakesThePlaceOfTheEarlier) {
  collectLog();
  ad_->updateIcons(
      linearWith("<Icon program='AdChoices' id='1'/><Icon program='Other' id='2'/>"
                 "<Icon program='AdChoices' id='3'/>"));
  EXPECT_EQ(icons(), (Pairs{{"AdChoices", "3"}, {"Other", "2"}}));
  EXPECT_EQ(log(), (Names{"[TAMZO-LOG][v8.0.0 p0] scsd", "[TAMZO-LOG][v8.0.0 p0] scsd",
                          "[TAMZO-LOG][v8.0.0 p0] Added Extra Action"}));
  ad_->updateIcons(linearWith("<Icon program='Other' id='4'/>"));
  EXPECT_EQ(icons(), (Pairs{{"AdChoices", "3"}, {"Other", "4"}}));
}

TEST_F(Icons, ProgramsAreToldApartByEveryCharacter) {
  ad_->updateIcons(
      linearWith("<Icon program='AdChoices'/><Icon program='adchoices'/>"
                 "<Icon program='AdChoices '/>"));
  EXPECT_EQ(icons().size(), 3U);
}

TEST_F(Icons, OneWithoutAProgramIsPassedOver) {
  collectLog();
  ad_->updateIcons(linearWith("<Icon/><Icon program=''/><Icon Program='x'/>"));
  EXPECT_EQ(icons(), Pairs{});
  EXPECT_EQ(log(), Names{"[TAMZO-LOG][v8.0.0 p0] Added Extra Action"}) << "logged all the same";
}

TEST_F(Icons, ALinearWithoutAnyChangesNothing) {
  ad_->updateIcons(linearWith("<Icon program='p' id='1'/>"));
  collectLog();
  ad_->updateIcons(linearWith(""));
  ad_->updateIcons(rootOf("<Linear/>"));
  ad_->updateIcons(NodeList());
  EXPECT_EQ(icons(), (Pairs{{"p", "1"}}));
  EXPECT_TRUE(log().empty());
}

TEST_F(Icons, ThereIsNoPlaceForOneWhereExtraActionsAreNil) {
  ad_->setExtraActions({});
  ad_->updateIcons(linearWith("<Icon program='p'/>"));
  ad_->checkProgramExist("p", rootOf("<Icon program='p'/>").at(0));
  EXPECT_TRUE(ad_->extraActions().isNil());
}

TEST_F(Icons, OfSeveralEntriesOfAProgramTheLastIsReplaced) {
  const NodeList old = rootOf("<Icon program='p' id='old'/>");
  ad_->extraActions().list()->emplace_back(old.at(0));
  ad_->extraActions().list()->emplace_back(old.at(0));
  collectLog();
  ad_->checkProgramExist("p", rootOf("<Icon program='p' id='new'/>").at(0));
  EXPECT_EQ(icons(), (Pairs{{"p", "old"}, {"p", "new"}}));
  ad_->checkProgramExist("q", rootOf("<Icon program='q' id='new'/>").at(0));
  EXPECT_EQ(icons().back(), (std::pair<std::string, std::string>{"q", "new"}));
  EXPECT_EQ(log().size(), 2U);
  ad_->extraActions().list()->emplace_back(rootOf("<Icon program='' id='e'/>").at(0));
  ad_->checkProgramExist(Text(), rootOf("<Icon id='n'/>").at(0));
  EXPECT_EQ(icons().size(), 5U) << "nil equals no program, not even an empty one";
}

TEST_F(Icons, ElementsAreKeptThemselvesAndOutliveTheirDocument) {
  DDXMLElement icon;
  {
    const NodeList linears =
        linearWith("<Icon program='p'><StaticResource>u</StaticResource></Icon>");
    icon = linears.firstMatch("Icons/Icon");
    ad_->updateIcons(linears);
  }
  const auto& kept = std::get<DDXMLElement>(ad_->extraActions().list()->at(0));
  EXPECT_EQ(kept, icon);
  EXPECT_EQ(kept.XMLString(),
            Text("<Icon program=\"p\"><StaticResource>u</StaticResource></Icon>"));
}

TEST_F(Icons, ManyAreReadInNoTime) {
  std::string many;
  for (int i = 0; i < 50000; ++i) {
    many += "<Icon program='p" + std::to_string(i) + "'/>";
  }
  ad_->updateIcons(linearWith(many + many));
  EXPECT_EQ(icons().size(), 50000U);
}

}  // namespace
}  // namespace tamzo::testing
