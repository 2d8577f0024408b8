// What C reads of a record that a host has changed, and of one that nobody filled.

#include "capi/Values.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "capi/Boundary.h"

namespace tamzo::capi {
namespace {

TEST(Values, EmptyRecordHasNothing) {
  const TamzoVastAd record;
  const Values values(record);
  EXPECT_EQ(values.adID.data, nullptr);
  EXPECT_EQ(values.trackers, nullptr);
  EXPECT_EQ(values.mediaFiles, nullptr);
  EXPECT_EQ(values.extraActions, nullptr);
  EXPECT_EQ(values.duration, nullptr);
  EXPECT_FALSE(values.canZoom);
}

TEST(Values, ListsWithoutEntriesAreNotNil) {
  TamzoVastAd record;
  record.setCategoryArray(makeList<Text>());
  record.setMediaFiles(makeList<std::shared_ptr<TamzoMediaFile>>());
  const Values values(record);
  ASSERT_NE(values.categoryArray, nullptr);
  EXPECT_NE(values.categoryArray->items, nullptr);
  EXPECT_EQ(values.categoryArray->count, 0U);
  ASSERT_NE(values.mediaFiles, nullptr);
  EXPECT_NE(values.mediaFiles->items, nullptr);
}

TEST(Values, NullEntriesOfAHostAreEmpty) {
  TamzoVastAd record;
  record.setMediaFiles(makeList<std::shared_ptr<TamzoMediaFile>>());
  record.mediaFiles()->push_back(nullptr);
  record.setCards(makeList<std::shared_ptr<TamzoCard>>());
  record.cards()->push_back(nullptr);
  auto trackers = std::make_shared<TrackerMap>();
  trackers->set("start", nullptr);
  record.setTrackers(trackers);
  const Values values(record);
  EXPECT_EQ(values.mediaFiles->items[0]->url.data, nullptr);
  EXPECT_EQ(values.cards->items[0], nullptr);
  EXPECT_EQ(viewOf(values.trackers->items[0]->name), "start");
  EXPECT_EQ(values.trackers->items[0]->items, nullptr);
}

TEST(Values, VendorsValuesAreJson) {
  TamzoVastAd record;
  record.setExtraActions(TamzoExtraActions::fromJson("[1, {\"a\": null}]"));
  const Values list(record);
  ASSERT_EQ(list.extraActions->count, 2U);
  EXPECT_EQ(list.extraActions->json.data, nullptr);
  EXPECT_EQ(viewOf(list.extraActions->items[1]->json), "{\"a\":null}");
  EXPECT_EQ(list.extraActions->items[1]->icon, nullptr);

  record.setExtraActions(TamzoExtraActions::fromJson("{\"a\": 1}"));
  const Values one(record);
  EXPECT_EQ(viewOf(one.extraActions->json), "{\"a\":1}");
  EXPECT_EQ(one.extraActions->items, nullptr);
}

TEST(Values, ArenaKeepsWhatItViews) {
  Arena arena;
  const tamzo_vast_text kept = arena.keep(Text(std::string(100, 'x')));
  for (int i = 0; i < 1000; ++i) {
    arena.keep(Text(std::to_string(i)));
  }
  EXPECT_EQ(viewOf(kept), std::string(100, 'x'));
  EXPECT_EQ(arena.keep(DDXMLElement()), nullptr);
  EXPECT_NE(arena.make<int>(0), nullptr);
  EXPECT_EQ(arena.make<int>(3)[2], 0);
}

}  // namespace
}  // namespace tamzo::capi
