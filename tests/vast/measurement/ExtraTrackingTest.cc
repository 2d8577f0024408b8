// The vendor's own tracking events.

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/Responses.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using ExtraTrackingTest = SdkTest;

// Has a standard event as well.
std::string ownEventAd(const std::string& version, const std::string& content) {
  return inlineAd(version, content,
                  "<TrackingEvents><Tracking event='start'>https://t.example/own</Tracking>"
                  "</TrackingEvents>" +
                      kVideo);
}

std::string extraEvents(const std::string& tracking) {
  return vendorExtension("<ExtraTrackingEvents>" + tracking + "</ExtraTrackingEvents>");
}

TEST_F(ExtraTrackingTest, JoinTheTrackers) {
  const TrackerRow rows[] = {
      {"a new name", "<Tracking event='x'>u</Tracking>", R"({"x":[{"url":"u","offset":""}]})"},
      {"a name without URL gets an empty list", "<Tracking event='x'/>", R"({"x":[]})"},
      {"case tells names apart", "<Tracking event='a'>1</Tracking><Tracking event='A'>2</Tracking>",
       R"({"a":[{"url":"1","offset":""}],"A":[{"url":"2","offset":""}]})"},
      {"names and URLs stay untrimmed", "<Tracking event=' x '> u </Tracking>",
       R"({" x ":[{"url":" u ","offset":""}]})"},
      {"an offset has no effect", "<Tracking event='x' offset='00:00:05'>u</Tracking>",
       R"({"x":[{"url":"u","offset":""}]})"},
      {"an empty name is a name", "<Tracking event=''>u</Tracking>",
       R"({"":[{"url":"u","offset":""}]})"},
  };
  for (const TrackerRow& row : rows) {
    const auto ad = freshRecord();
    ad->updateExtraTrackingEvent(rootOf("<I>" + extraEvents(row.xml) + "</I>"));
    EXPECT_EQ(trackersAsJson(*ad), row.expected) << row.name;
  }
}

TEST_F(ExtraTrackingTest, FollowTheStandardOnesInVersion4) {
  const std::string extra = extraEvents("<Tracking event='start'>https://t.example/x</Tracking>");
  for (const char* version : {"2.0", "3.0", "4.0"}) {
    const auto ad = TamzoVastAd::initWithVast(ownEventAd(version, extra));
    const TrackerList start = ad->trackers()->find("start");
    ASSERT_EQ(start->size(), version[0] == '4' ? 2U : 1U) << version;
    EXPECT_EQ(start->front()->url(), "https://t.example/own") << version;
    EXPECT_EQ(start->back()->url(),
              version[0] == '4' ? "https://t.example/x" : "https://t.example/own")
        << version;
  }
  answerEveryUrlWith(ownEventAd("4.0", ""));
  const auto chain = TamzoVastAd::initWithVast(wrapper("4.0", extra));
  EXPECT_EQ(chain->trackers()->find("start")->front()->url(), "https://t.example/x");
}

TEST_F(ExtraTrackingTest, OneWithoutANameFailsTheAd) {
  const auto ad = TamzoVastAd::initWithVast(
      ownEventAd("4.0", extraEvents("<Tracking event='x'>1</Tracking><Tracking>2</Tracking>"
                                    "<Tracking event='y'>3</Tracking>")));
  EXPECT_EQ(ad->errorCode(), 100);
  EXPECT_EQ(ad->trackers()->find("x")->size(), 1U) << "what was read before stays";
  EXPECT_EQ(ad->trackers()->find("y"), nullptr);
  EXPECT_TRUE(ad->mediaFiles()->empty());
}

TEST_F(ExtraTrackingTest, EveryCallIsLogged) {
  const auto ad = freshRecord();
  collectLog();
  ad->updateExtraTrackingEvent(NodeList());
  ad->updateExtraTrackingEvent(rootOf("<I/>"));
  EXPECT_THROW(ad->updateExtraTrackingEvent(NodeList::makeEmpty()), std::out_of_range);
  EXPECT_EQ(log(), std::vector<std::string>(3, "[TAMZO-LOG][v8.0.0 p0] edc"));
}

TEST_F(ExtraTrackingTest, AHundredThousandNamesAndAHugeOneAreTakenAlike) {
  std::string tracking = "<Tracking event='" + std::string(1 << 20, 'n') + "'>u</Tracking>";
  for (int i = 0; i < 100'000; ++i) {
    tracking += "<Tracking event='e" + std::to_string(i) + "'>u</Tracking>";
  }
  const auto ad = TamzoVastAd::initWithVast(ownEventAd("4.0", extraEvents(tracking)));
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_EQ(ad->trackers()->find(std::string(1 << 20, 'n'))->size(), 1U);
  EXPECT_EQ(ad->trackers()->find("e99999")->size(), 1U);
}

TEST_F(ExtraTrackingTest, NothingHappensWithoutNodes) {
  const auto ad = freshRecord();
  const std::string before = recordAsJson(*ad);
  collectLog();
  for (const NodeList& nodes : {NodeList(), NodeList::makeEmpty()}) {
    ad->updateExtraTrackingEvent_REC(nodes);
    EXPECT_EQ(recordAsJson(*ad), before);
    EXPECT_TRUE(log().empty());
  }
}

}  // namespace
}  // namespace tamzo::testing
