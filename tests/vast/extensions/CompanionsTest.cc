// Companions of a chain, and the choice among documents.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Responses.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using CompanionsTest = SdkTest;

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
    const std::string inLine = inlineAd(version, companions("<Companion id='i'/>"));
    readUrlsWith([&](const Text&) { return inLine; });
    const auto both =
        TamzoVastAd::initWithVast(wrapper(version, companions("<Companion id='w'/>")));
    EXPECT_EQ(idsOf(*both), "w; i") << version;
    EXPECT_EQ(both->getMostSuitableCompanion(), both->companionAds()->at(0)) << version;
    const auto inner = TamzoVastAd::initWithVast(wrapper(version));
    EXPECT_EQ(idsOf(*inner), "i") << version;
  }
}

TEST_F(CompanionsTest, AnAdWithoutALinearStillHasItsCompanions) {
  for (const char* version : {"2.0", "3.0", "4.0"}) {
    const auto ad =
        TamzoVastAd::initWithVast(bareInline(version, companions("<Companion id='i'/>")));
    EXPECT_EQ(ad->errorCode(), 405) << version;
    EXPECT_EQ(idsOf(*ad), "i") << version;
  }
}

TEST_F(CompanionsTest, ASecondParseStartsWithoutCompanions) {
  const auto ad = TamzoVastAd::initWithVast(inlineAd("3.0", companions("<Companion id='i'/>")));
  const auto old = ad->companionAds();
  ad->parseVast(inlineAd("3.0"));
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

}  // namespace
}  // namespace tamzo::testing
