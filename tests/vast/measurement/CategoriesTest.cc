// Ad categories, and which of them the app blocks.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/Growth.h"
#include "tests/support/Responses.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using CategoriesTest = SdkTest;

// An ad with something for every updater that follows the category check.
std::string adWith(const std::string& content, const std::string& version = "4.0") {
  return bareInline(
      version,
      "<Impression>https://t.example/i</Impression>"
      "<ViewableImpression><Viewable>https://t.example/v</Viewable></ViewableImpression>"
      "<Expires>60</Expires>" +
          content + "<UniversalAdId idRegistry='r' idValue='v'/>" +
          vendorExtension("<TrackId>t</TrackId>") +
          linear("<Duration>00:00:10</Duration><TrackingEvents><Tracking event='start'>"
                 "https://t.example/s</Tracking></TrackingEvents>" +
                 kVideo) +
          "<Creatives><Creative><CompanionAds><Companion width='1' height='1'/></CompanionAds>"
          "</Creative></Creatives>");
}

TEST_F(CategoriesTest, ACategoryIsBlockedByAnExactPartOfTheList) {
  const struct {
    Text blocked;
    const char* categories;
    bool isBlocked;
  } rows[] = {
      {"IAB25,IAB26", "<Category>IAB26</Category>", true},
      {"IAB25,IAB26", "<Category>IAB25</Category>", true},
      {"IAB25,IAB26", "<Category>IAB1</Category><Category>IAB26</Category>", true},
      {"IAB25, IAB26", "<Category>IAB26</Category>", false},
      {"IAB25, IAB26", "<Category> IAB26</Category>", true},
      {"IAB26", "<Category>IAB26 </Category>", false},
      {"iab26", "<Category>IAB26</Category>", false},
      {"IAB2", "<Category>IAB26</Category>", false},
      {"IAB26", "<Category>IAB2</Category>", false},
      {"IAB25,IAB26", "<Category>IAB25,IAB26</Category>", false},
      {"IAB25,", "<Category/>", true},
      {",IAB25", "<Category/>", true},
      {"IAB25,,IAB26", "<Category/>", true},
      {"", "<Category/>", true},
      {"", "<Category>IAB1</Category>", false},
      {"IAB25", "<Category/>", false},
      {Text(), "<Category/>", false},
      {Text(), "<Category>IAB1</Category>", false},
      {"IAB25,", "", false},
      {"IAB1", "<More><Category>IAB1</Category></More>", false},
      {"IAB1", "<Category authority='iab'><![CDATA[IAB1]]></Category>", true},
  };
  for (const auto& row : rows) {
    blockCategories(row.blocked);
    const auto ad = TamzoVastAd::initWithVast(adWith(row.categories));
    EXPECT_EQ(ad->errorCode(), row.isBlocked ? 205 : 0) << row.blocked << " " << row.categories;
  }
}

TEST_F(CategoriesTest, AreKeptAsTheyStandAndInOrder) {
  const auto ad = TamzoVastAd::initWithVast(adWith(
      "<Category> IAB2 </Category><Category>IAB1</Category><Category/><Category>IAB1</Category>"));
  EXPECT_EQ(*ad->categoryArray(), (std::vector<Text>{" IAB2 ", "IAB1", "", "IAB1"}));
}

TEST_F(CategoriesTest, ABlockedCategoryStopsTheDocumentAtOnce) {
  blockCategories("IAB26");
  const auto ad = TamzoVastAd::initWithVast(adWith("<Category>IAB26</Category>"));
  EXPECT_EQ(ad->errorCode(), 205);
  EXPECT_EQ(*ad->categoryArray(), std::vector<Text>{"IAB26"});
  EXPECT_EQ(ad->expires(), 60.0);
  EXPECT_EQ(ad->trackers()->find("Impression")->size(), 1U);
  EXPECT_EQ(ad->trackers()->find("Viewable")->size(), 1U);
  EXPECT_TRUE(ad->univversalIDRegistry().isNil());
  EXPECT_EQ(ad->trackers()->find("start"), nullptr);
  EXPECT_TRUE(ad->trackId().isNil());
  EXPECT_EQ(ad->duration(), nullptr);
  EXPECT_TRUE(ad->mediaFiles()->empty());
  EXPECT_TRUE(ad->companionAds()->empty());
}

TEST_F(CategoriesTest, OlderVersionsAndWrappersHaveNoPolicy) {
  blockCategories("IAB26");
  for (const char* version : {"2.0", "3.0"}) {
    const auto ad = TamzoVastAd::initWithVast(adWith("<Category>IAB26</Category>", version));
    EXPECT_EQ(ad->errorCode(), 0) << version;
    EXPECT_TRUE(ad->categoryArray()->empty()) << version;
    EXPECT_EQ(ad->expires(), 0.0) << version;
    EXPECT_TRUE(ad->univversalIDRegistry().isNil()) << version;
  }
  answerEveryUrlWith(adWith("<Category>IAB1</Category>"));
  const auto chain =
      TamzoVastAd::initWithVast(wrapper("4.0", "<Category>IAB26</Category><Expires>9</Expires>"));
  EXPECT_EQ(chain->errorCode(), 0);
  EXPECT_EQ(*chain->categoryArray(), std::vector<Text>{"IAB1"});
}

TEST_F(CategoriesTest, ThoseOfAnEarlierParseStillCount) {
  const auto ad = TamzoVastAd::initWithVast(adWith("<Category>IAB26</Category>"));
  EXPECT_EQ(ad->errorCode(), 0);
  blockCategories("IAB26");
  ad->parseVast(adWith("<Category>IAB1</Category>"));
  EXPECT_EQ(ad->errorCode(), 205);
  EXPECT_EQ(*ad->categoryArray(), (std::vector<Text>{"IAB26", "IAB1"}));
}

TEST_F(CategoriesTest, AreLoggedWithWhatIsBlocked) {
  const auto ad = freshRecord();
  collectLog();
  ad->updateCategory(rootOf("<I/>"));
  EXPECT_TRUE(log().empty());
  ad->updateCategory(rootOf("<I><Category>IAB1</Category><Category>IAB2</Category></I>"));
  blockCategories("IAB2,IAB9");
  ad->updateCategory(rootOf("<I><Category>IAB3</Category></I>"));
  const std::string prefix = "[TAMZO-LOG][v8.0.0 p0] ";
  EXPECT_EQ(log(), (std::vector<std::string>{
                       prefix + "[Blocked ad category: (null)] and [Vast Ad Category : IAB1,IAB2,]",
                       prefix + "[Blocked ad category: IAB2,IAB9] and [Vast Ad Category : IAB3,]",
                       prefix + "Vast Ad Category is blocked"}));
}

TEST_F(CategoriesTest, NoCategoryListIsBlockedByNothing) {
  blockCategories("IAB1,");
  EXPECT_FALSE(TamzoVastAd::isCategoryBlocked(nullptr));
  EXPECT_FALSE(TamzoVastAd::isCategoryBlocked(makeList<Text>()));
  const auto categories = makeList<Text>();
  categories->emplace_back();
  EXPECT_FALSE(TamzoVastAd::isCategoryBlocked(categories)) << "nil is not the empty text";
  categories->emplace_back("");
  EXPECT_TRUE(TamzoVastAd::isCategoryBlocked(categories));
}

TEST_F(CategoriesTest, ManyAgainstManyBlockedOnesAreRead) {
  std::string blocked;
  std::string categories;
  for (int i = 0; i < 100'000; ++i) {
    blocked += "B" + std::to_string(i) + ",";
    categories += "<Category>C" + std::to_string(i) + "</Category>";
  }
  blockCategories(blocked);
  const auto ad = TamzoVastAd::initWithVast(adWith(categories));
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_EQ(ad->categoryArray()->size(), 100'000U);
}

TEST_F(CategoriesTest, ManyAgainstManyBlockedOnesTakeLinearTime) {
  EXPECT_TRUE(growsLinearly(2000, [](std::size_t size) {
    std::string blocked;
    auto categories = makeList<Text>();
    for (std::size_t i = 0; i < size; ++i) {
      blocked += "B" + std::to_string(i) + ",";
      categories->emplace_back("C" + std::to_string(i));
    }
    return [blocked = Text(blocked), categories] {
      blockCategories(blocked);
      EXPECT_FALSE(TamzoVastAd::isCategoryBlocked(categories));
    };
  }));
}

TEST_F(CategoriesTest, NothingHappensWithoutNodes) {
  const auto ad = freshRecord();
  const std::string before = recordAsJson(*ad);
  collectLog();
  for (const NodeList& nodes : {NodeList(), NodeList::makeEmpty()}) {
    ad->updateCategory(nodes);
    EXPECT_EQ(recordAsJson(*ad), before);
    EXPECT_TRUE(log().empty());
  }
}

}  // namespace
}  // namespace tamzo::testing
