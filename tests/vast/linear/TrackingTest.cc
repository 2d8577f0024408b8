// Tracking events and click trackers of a Linear.

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Growth.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using TrackingTest = UpdaterTest;

using Pairs = UrlsAndOffsets;

NodeList linearWithTracking(const std::string& tracking) {
  return rootOf("<Linear><TrackingEvents>" + tracking + "</TrackingEvents></Linear>");
}

TEST_F(TrackingTest, EventsAreListedByNameInDocumentOrder) {
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

TEST_F(TrackingTest, OffsetsAreWholeSecondsAsText) {
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

TEST_F(TrackingTest, AnOffsetThatIsListedIsTrackedAllTheSame) {
  ad_->trackersOffset()->emplace_back("00:00:10");
  const std::string tracking = "<Tracking event='progress' offset='00:00:10'>u</Tracking>";
  ad_->updateTrackers(linearWithTracking(tracking + tracking));
  EXPECT_EQ(trackers("progress").size(), 2U);
  EXPECT_EQ(ad_->trackersOffset()->size(), 1U);
}

TEST_F(TrackingTest, AnEventWithoutAUrlHasAnEmptyList) {
  ad_->updateTrackers(
      linearWithTracking("<Tracking event='complete'/>"
                         "<Tracking event=''>u</Tracking>"));
  EXPECT_EQ(trackers("complete"), Pairs{});
  EXPECT_EQ(trackers(""), (Pairs{{"u", ""}})) << "an empty name is a name";
}

TEST_F(TrackingTest, UrlsAreNotTrimmed) {
  ad_->updateTrackers(
      rootOf("<Linear><TrackingEvents><Tracking event='start'>\n a&amp;b </Tracking>"
             "</TrackingEvents><VideoClicks><ClickTracking> \n </ClickTracking>"
             "<ClickTracking> <![CDATA[ c ]]></ClickTracking><ClickTracking/>"
             "</VideoClicks></Linear>"));
  EXPECT_EQ(trackers("start"), (Pairs{{"\n a&b ", ""}}));
  EXPECT_EQ(trackers("ClickTracking"), (Pairs{{" \n ", ""}, {"  c ", ""}}));
}

TEST_F(TrackingTest, AnEventWithoutANameThrowsAndKeepsWhatCameBefore) {
  EXPECT_THROW(ad_->updateTrackers(linearWithTracking("<Tracking event='start'>a</Tracking>"
                                                      "<Tracking>b</Tracking>"
                                                      "<Tracking event='end'>c</Tracking>")),
               std::exception);
  EXPECT_EQ(trackerNames(), Names{"start"});
}

TEST_F(TrackingTest, ClickTrackingHasAListEvenWithoutClicks) {
  ad_->updateTrackers(NodeList());
  ad_->updateTrackers(NodeList::makeEmpty());
  EXPECT_EQ(trackerNames(), Names{}) << "nothing at all without a Linear";
  ad_->updateTrackers(rootOf("<Linear/>"));
  EXPECT_EQ(trackerNames(), Names{"ClickTracking"});
  EXPECT_EQ(trackers("ClickTracking"), Pairs{});
}

TEST_F(TrackingTest, CallsAddUpAndOnlyTheFirstLinearCounts) {
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

TEST_F(TrackingTest, AMapThatAHostTookAwayIsMadeAnew) {
  ad_->setTrackers(nullptr);
  ad_->updateTrackers(linearWithTracking("<Tracking event='start'>a</Tracking>"));
  ASSERT_NE(ad_->trackers(), nullptr);
  EXPECT_EQ(trackers("start"), (Pairs{{"a", ""}}));
}

TEST_F(TrackingTest, ManyEventsOfManyNamesAreReadInOneGo) {
  EXPECT_TRUE(growsLinearly(2000, [](std::size_t size) {
    std::string tracking;
    for (std::size_t i = 0; i < size; ++i) {
      tracking += "<Tracking event='e" + std::to_string(i % (size / 2)) + "'>u</Tracking>";
    }
    return [nodes = linearWithTracking(tracking)] { freshRecord()->updateTrackers(nodes); };
  }));
}

}  // namespace
}  // namespace tamzo::testing
