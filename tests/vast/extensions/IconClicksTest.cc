// Clicks of an icon.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using IconClicksTest = SdkTest;

TEST_F(IconClicksTest, TheClicksOfTheFirstIconAreMapped) {
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

TEST_F(IconClicksTest, EveryRunMakesANewMap) {
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

TEST_F(IconClicksTest, MayBeLookedForBelowAnElementOfTheRecordsOwnMap) {
  const auto ad = freshRecord();
  ad->getImageAd(
      parseDocument("<L><Icons><Icon><IconClicks><IconClickTracking><Icons><Icon><IconClicks>"
                    "<IconClickThrough>inner</IconClickThrough></IconClicks></Icon></Icons>"
                    "</IconClickTracking></IconClicks></Icon></Icons></L>")
          ->rootElement());
  ad->getImageAd(ad->iconMap()->at("iconClickTracking"));
  ASSERT_EQ(ad->iconMap()->size(), 1U);
  EXPECT_EQ(ad->iconMap()->at("iconClickThrough").stringValue(), "inner");
}

}  // namespace
}  // namespace tamzo::testing
