// Expiry, categories and the universal ad id.

#include <gtest/gtest.h>

#include <cmath>

#include "tamzo/vast/RecordJson.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using PolicyTest = SdkTest;

std::shared_ptr<TamzoVastAd> freshRecord() { return TamzoVastAd::initWithVast(""); }

// An ad with something for every updater that follows the category check.
std::string adWith(const std::string& content, const std::string& version = "4.0") {
  return "<VAST version='" + version +
         "'><Ad id='a'><InLine><Impression>https://t.example/i</Impression>"
         "<ViewableImpression><Viewable>https://t.example/v</Viewable></ViewableImpression>"
         "<Expires>60</Expires>" +
         content +
         R"(<UniversalAdId idRegistry="r" idValue="v"/>
            <Extensions><Extension><Tamzo><TrackId>t</TrackId></Tamzo></Extension></Extensions>
            <Creatives>
              <Creative><Linear><Duration>00:00:10</Duration>
                <TrackingEvents><Tracking event="start">https://t.example/s</Tracking></TrackingEvents>
                <MediaFiles><MediaFile type="video/mp4">https://cdn.example/a.mp4</MediaFile></MediaFiles>
              </Linear></Creative>
              <Creative><CompanionAds><Companion width="1" height="1"/></CompanionAds></Creative>
            </Creatives></InLine></Ad></VAST>)";
}

// ---- Expires ---------------------------------------------------------------------------------

TEST_F(PolicyTest, ExpiresIsReadAsANumberAndStaysWhereThereIsNone) {
  constexpr double kUntouched = -7.0;
  const struct {
    const char* xml;
    double expires;
  } rows[] = {
      {"<I><Expires>45</Expires></I>", 45.0},
      {"<I><Expires>  30abc</Expires></I>", 30.0},
      {"<I><Expires>never</Expires></I>", 0.0},
      {"<I><Expires> </Expires></I>", 0.0},
      {"<I><Expires>12.5e1x</Expires></I>", 125.0},
      {"<I><Expires>-3</Expires></I>", -3.0},
      {"<I><Expires>+-3</Expires></I>", 0.0},
      {"<I><Expires>0x1F</Expires></I>", 0.0},
      {"<I><Expires>inf</Expires></I>", 0.0},
      {"<I><Expires>\xE2\x88\x92"
       "5</Expires></I>",
       0.0},
      {"<I><Expires>1e999</Expires></I>", HUGE_VAL},
      {"<I><Expires>1</Expires><Expires>2</Expires></I>", 1.0},
      {"<I><Expires/></I>", kUntouched},
      {"<I/>", kUntouched},
      {"<I><More><Expires>5</Expires></More></I>", kUntouched},
      {"<I><expires>5</expires></I>", kUntouched},
  };
  for (const auto& row : rows) {
    const auto ad = freshRecord();
    ad->setExpires(kUntouched);
    ad->updateExpires(rootOf(row.xml));
    EXPECT_EQ(ad->expires(), row.expires) << row.xml;
  }
}

TEST_F(PolicyTest, ExpiresIsLoggedBeforeItIsLookedAt) {
  const auto ad = freshRecord();
  collectLog();
  ad->updateExpires(rootOf("<I><Expires>45 s</Expires></I>"));
  ad->updateExpires(rootOf("<I/>"));
  const std::string prefix = "[TAMZO-LOG][v8.0.0 p0] Vast Ad Expires ";
  EXPECT_EQ(log(), (std::vector<std::string>{prefix + "45 s", prefix}));
}

// ---- Categories ------------------------------------------------------------------------------

TEST_F(PolicyTest, ACategoryIsBlockedByAnExactPartOfTheList) {
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

TEST_F(PolicyTest, CategoriesAreKeptAsTheyStandAndInOrder) {
  const auto ad = TamzoVastAd::initWithVast(adWith(
      "<Category> IAB2 </Category><Category>IAB1</Category><Category/><Category>IAB1</Category>"));
  EXPECT_EQ(*ad->categoryArray(), (std::vector<Text>{" IAB2 ", "IAB1", "", "IAB1"}));
}

TEST_F(PolicyTest, ABlockedCategoryStopsTheDocumentAtOnce) {
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

TEST_F(PolicyTest, OlderVersionsAndWrappersHaveNoPolicy) {
  blockCategories("IAB26");
  for (const char* version : {"2.0", "3.0"}) {
    const auto ad = TamzoVastAd::initWithVast(adWith("<Category>IAB26</Category>", version));
    EXPECT_EQ(ad->errorCode(), 0) << version;
    EXPECT_TRUE(ad->categoryArray()->empty()) << version;
    EXPECT_EQ(ad->expires(), 0.0) << version;
    EXPECT_TRUE(ad->univversalIDRegistry().isNil()) << version;
  }
  readUrlsWith([](const Text&) { return adWith("<Category>IAB1</Category>"); });
  const auto chain = TamzoVastAd::initWithVast(
      "<VAST version='4.0'><Ad><Wrapper><VASTAdTagURI>http://n.example/</VASTAdTagURI>"
      "<Category>IAB26</Category><Expires>9</Expires></Wrapper></Ad></VAST>");
  EXPECT_EQ(chain->errorCode(), 0);
  EXPECT_EQ(*chain->categoryArray(), std::vector<Text>{"IAB1"});
}

TEST_F(PolicyTest, CategoriesOfAnEarlierParseStillCount) {
  const auto ad = TamzoVastAd::initWithVast(adWith("<Category>IAB26</Category>"));
  EXPECT_EQ(ad->errorCode(), 0);
  blockCategories("IAB26");
  ad->parseVast(adWith("<Category>IAB1</Category>"));
  EXPECT_EQ(ad->errorCode(), 205);
  EXPECT_EQ(*ad->categoryArray(), (std::vector<Text>{"IAB26", "IAB1"}));
}

TEST_F(PolicyTest, CategoriesAreLoggedWithWhatIsBlocked) {
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

TEST_F(PolicyTest, NoCategoryListIsBlockedByNothing) {
  blockCategories("IAB1,");
  EXPECT_FALSE(TamzoVastAd::isCategoryBlocked(nullptr));
  EXPECT_FALSE(TamzoVastAd::isCategoryBlocked(makeList<Text>()));
  const auto categories = makeList<Text>();
  categories->emplace_back();
  EXPECT_FALSE(TamzoVastAd::isCategoryBlocked(categories)) << "nil is not the empty text";
  categories->emplace_back("");
  EXPECT_TRUE(TamzoVastAd::isCategoryBlocked(categories));
}

TEST_F(PolicyTest, ManyCategoriesAgainstManyBlockedOnesTakeLinearTime) {
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

// ---- Universal ad id -------------------------------------------------------------------------

TEST_F(PolicyTest, TheUniversalAdIdIsReadFromAttributes) {
  const Text kept = "kept";
  const struct {
    const char* xml;
    Text registry;
    Text value;
  } rows[] = {
      {"<I><UniversalAdId idRegistry='r' idValue='v'>text</UniversalAdId></I>", "r", "v"},
      {"<I><UniversalAdId idRegistry='r'>text</UniversalAdId></I>", "r", kept},
      {"<I><UniversalAdId idValue=' v '/></I>", kept, " v "},
      {"<I><UniversalAdId idRegistry='' idValue=''/></I>", "", ""},
      {"<I><UniversalAdId/><UniversalAdId idRegistry='r' idValue='v'/></I>", kept, kept},
      {"<I><UniversalAdId idregistry='r' IdValue='v'/></I>", kept, kept},
      {"<I><Creatives><Creative><UniversalAdId idRegistry='r'/></Creative></Creatives></I>", kept,
       kept},
      {"<I/>", kept, kept},
  };
  for (const auto& row : rows) {
    const auto ad = freshRecord();
    ad->setUnivversalIDRegistry(kept);
    ad->setUniversalIDValue(kept);
    ad->updateUniversalAdIdInfo(rootOf(row.xml));
    EXPECT_EQ(ad->univversalIDRegistry(), row.registry) << row.xml;
    EXPECT_EQ(ad->universalIDValue(), row.value) << row.xml;
  }
}

TEST_F(PolicyTest, TheUniversalAdIdIsLoggedAsItThenStands) {
  const auto ad = freshRecord();
  collectLog();
  ad->updateUniversalAdIdInfo(rootOf("<I><UniversalAdId idRegistry='r'/></I>"));
  ad->updateUniversalAdIdInfo(rootOf("<I><UniversalAdId idValue='v'/></I>"));
  ad->updateUniversalAdIdInfo(rootOf("<I><Creative><UniversalAdId/></Creative></I>"));
  ad->updateUniversalAdIdInfo(NodeList());
  ad->updateUniversalAdIdInfo(NodeList::makeEmpty());
  const std::string prefix = "[TAMZO-LOG][v8.0.0 p0] Universal AdId ";
  EXPECT_EQ(log(), (std::vector<std::string>{
                       prefix + "Info idRegistryNode = r idValueNode = (null)",
                       prefix + "Info idRegistryNode = r idValueNode = v", prefix + "not available",
                       prefix + "not available", prefix + "not available"}));
}

// ---- Nothing to do ---------------------------------------------------------------------------

TEST_F(PolicyTest, ASurveyIsNotReadAndNoNodesChangeNothing) {
  const auto ad = freshRecord();
  const std::string before = recordAsJson(*ad);
  collectLog();
  ad->updateSurvey(rootOf("<I><Survey>https://s.example/</Survey></I>"));
  for (const NodeList& nodes : {NodeList(), NodeList::makeEmpty()}) {
    ad->updateSurvey(nodes);
    ad->updateExpires(nodes);
    ad->updateCategory(nodes);
  }
  EXPECT_EQ(recordAsJson(*ad), before);
  EXPECT_TRUE(log().empty());
}

}  // namespace
}  // namespace tamzo::testing
