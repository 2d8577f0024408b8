#include "tamzo/sdk/TamzoTrackerEvent.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/Growth.h"

namespace tamzo::testing {
namespace {

TEST(TamzoTrackerEventTest, ATrackersOffsetIsTextInWholeSeconds) {
  EXPECT_EQ(trackerOffset(Text()), "");
  EXPECT_EQ(trackerOffset(""), "");
  EXPECT_EQ(trackerOffset("00:00:10.500"), "10");
  EXPECT_EQ(trackerOffset(" 00:01:00 "), "60");
  EXPECT_EQ(trackerOffset("25%"), "0");
  EXPECT_EQ(trackerOffset(" "), "0");
}

TEST(TamzoTrackerEventTest, AnEventHasNoTimeUnlessOneIsGiven) {
  const auto event = makeTracker("u");
  EXPECT_EQ(event->url(), "u");
  EXPECT_EQ(event->offset(), "");
  EXPECT_EQ(makeTracker("u", "5")->offset(), "5");
  EXPECT_TRUE(makeTracker(Text())->url().isNil());
}

// ---- The map -------------------------------------------------------------------------------

TEST(TamzoTrackerEventTest, ATrackerMapKeepsNamesInOrder) {
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

TEST(TamzoTrackerEventTest, AHundredThousandNamesStayApart) {
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

TEST(TamzoTrackerEventTest, AMapOfManyNamesIsFilledInOneGo) {
  EXPECT_TRUE(growsLinearly(2000, [](std::size_t size) {
    return [size] {
      TrackerMap map;
      for (std::size_t i = 0; i < size; ++i) {
        map.listFor("name" + std::to_string(i));
      }
      EXPECT_EQ(map.size(), size);
    };
  }));
}

TEST(TamzoTrackerEventTest, AMapKeepsTheNameThatAGrowableTextHadThen) {
  TrackerMap map;
  MutableText name = MutableText::create();
  name.appendString("start");
  const TrackerList events = map.listFor(name.asText());
  name.appendString(std::string(1000, 'x'));
  EXPECT_EQ(map.find("start"), events);
  EXPECT_EQ(map.find(name.view()), nullptr);
  EXPECT_EQ(map.begin()->name, "start");
}

TEST(TamzoTrackerEventTest, ACopyOfAMapSharesItsListsAndOutlivesIt) {
  auto map = std::make_unique<TrackerMap>();
  for (int i = 0; i < 100; ++i) {
    map->listFor(Text("name" + std::to_string(i)));
  }
  const TrackerList last = map->find("name99");
  TrackerMap copy;
  copy.listFor("other");
  copy = *map;
  map.reset();
  EXPECT_EQ(copy.size(), 100U);
  EXPECT_EQ(copy.find("name99"), last);
  EXPECT_EQ(copy.find("other"), nullptr);
  copy.listFor("one more");
  const TrackerMap& same = copy;
  copy = same;
  EXPECT_EQ(copy.size(), 101U) << "assigned to itself";
}

TEST(TamzoTrackerEventTest, AMapIsEmptyOnceItWasMovedAway) {
  TrackerMap map;
  for (int i = 0; i < 100; ++i) {
    map.listFor(Text("name" + std::to_string(i)));
  }
  TrackerMap taken(std::move(map));
  EXPECT_EQ(map.size(), 0U);  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(map.find("name0"), nullptr);
  EXPECT_EQ(map.find("name99"), nullptr);
  map.listFor("new");
  taken = std::move(map);
  EXPECT_EQ(taken.size(), 1U);
  EXPECT_EQ(taken.find("name0"), nullptr);
  EXPECT_NE(taken.find("new"), nullptr);
}

TEST(TamzoTrackerEventTest, AMapMayBeGivenItsOwnNamesAndLists) {
  TrackerMap map;
  for (int i = 0; i < 8; ++i) {
    map.set(Text("name" + std::to_string(i)), map.listFor("first"));
  }
  map.set(map.begin()->name, map.listFor("ninth"));
  EXPECT_EQ(map.find("first"), map.find("ninth"));
  EXPECT_EQ(map.listFor(map.begin()->name), map.find("first"));
}

// ---- Reading -------------------------------------------------------------------------------

TEST(TamzoTrackerEventTest, ElementsWithoutTextAddNothing) {
  const auto events = makeList<std::shared_ptr<TamzoTrackerEvent>>();
  appendTracker(events, DDXMLElement());
  appendTracker(events, root("<T/>"));
  appendTracker(events, root("<T><!--x--></T>"));
  appendTrackers(events, NodeList());
  EXPECT_TRUE(events->empty());
  appendTracker(nullptr, root("<T>u</T>"));
  appendTrackers(nullptr, root("<R><T>a</T></R>").nodesForXPath("T"));
  appendTracker(events, root("<T> </T>"), "7");
  appendTrackers(events, root("<R><T>a</T><T/><T>b</T></R>").nodesForXPath("T"));
  ASSERT_EQ(events->size(), 3U);
  EXPECT_EQ((*events)[0]->url(), " ");
  EXPECT_EQ((*events)[0]->offset(), "7");
  EXPECT_EQ((*events)[2]->url(), "b");
  EXPECT_EQ((*events)[2]->offset(), "");
}

TEST(TamzoTrackerEventTest, ComponentsReadTrimmedUrlsAndPassOverTheNameless) {
  const TrackerMap trackers = trackersUnder(
      root("<C><TrackingEvents><Tracking event='a'> 1 </Tracking><Tracking>2</Tracking>"
           "<Tracking event='b'> </Tracking><Tracking event='a' offset='00:00:05'>3</Tracking>"
           "</TrackingEvents><Tracking event='c'>4</Tracking></C>"));
  ASSERT_EQ(trackers.size(), 2U);
  ASSERT_EQ(trackers.find("a")->size(), 2U);
  EXPECT_EQ(trackers.find("a")->front()->url(), "1");
  EXPECT_EQ(trackers.find("a")->back()->offset(), "5");
  EXPECT_TRUE(trackers.find("b")->empty());
  EXPECT_EQ(trackersUnder(DDXMLElement()).size(), 0U);
}

}  // namespace
}  // namespace tamzo::testing
