// How the vendor block lets the web view behave.

#include <gtest/gtest.h>

#include "tamzo/sdk/TamzoWebSettings.h"
#include "tests/support/Responses.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using WebSettingsTest = SdkTest;

void readVendorBlock(TamzoVastAd& ad, const std::string& content) {
  ad.updateTamzoExtensions(rootOf("<Tamzo>" + content + "</Tamzo>"));
}

// One letter for each flag that is on.
std::string flagsOf(const TamzoVastAd& ad) {
  std::string flags;
  flags += ad.canZoom() ? "z" : "";
  flags += ad.canOpenExternal() ? "o" : "";
  flags += ad.canAutoPlay() ? "a" : "";
  flags += ad.canScroll() ? "s" : "";
  flags += ad.shouldAskPermission() ? "p" : "";
  return flags;
}

std::string flagsOf(const TamzoWebSettings& settings) {
  std::string flags;
  flags += settings.canZoom() ? "z" : "";
  flags += settings.canOpenExternal() ? "o" : "";
  flags += settings.canAutoPlay() ? "a" : "";
  flags += settings.canScroll() ? "s" : "";
  flags += settings.shouldAskPermission() ? "p" : "";
  return flags;
}

TEST_F(WebSettingsTest, TheFlagsOfTheBlockAreRecordedAndPublished) {
  const struct {
    const char* name;
    const char* settings;
    const char* flags;
  } rows[] = {
      {"zoom", "<canZoom>true</canZoom>", "z"},
      {"open", "<canOpenExternal>Yes</canOpenExternal>", "o"},
      {"autoplay", "<canAutoPlay>1</canAutoPlay>", "a"},
      {"scroll", "<canScroll>T</canScroll>", "s"},
      {"permission", "<shouldAskPermission>y</shouldAskPermission>", "p"},
      {"two", "<canZoom>true</canZoom><canScroll>1</canScroll>", "zs"},
      {"all, in any order",
       "<shouldAskPermission>1</shouldAskPermission><canScroll>1</canScroll><canAutoPlay>1"
       "</canAutoPlay><canOpenExternal>1</canOpenExternal><canZoom>1</canZoom>",
       "zoasp"},
      {"none", "", ""},
      {"false, empty, unreadable",
       "<canZoom>false</canZoom><canScroll/><canAutoPlay>on</canAutoPlay>", ""},
      {"leading zeros and blanks", "<canZoom> 001</canZoom>", "z"},
      {"the first child of a name", "<canZoom>0</canZoom><canZoom>1</canZoom>", ""},
      {"names by case", "<CanZoom>1</CanZoom><canzoom>1</canzoom>", ""},
      {"grandchildren do not count", "<more><canZoom>1</canZoom></more>", ""},
  };
  for (const auto& row : rows) {
    const auto ad = freshRecord();
    TamzoState::setTamzoWebSettings(nullptr);
    readVendorBlock(
        *ad, std::string("<AdditionalWebSettings>") + row.settings + "</AdditionalWebSettings>");
    EXPECT_EQ(flagsOf(*ad), row.flags) << row.name;
    const auto published = TamzoState::getTamzoWebSettings();
    ASSERT_NE(published, nullptr) << row.name;
    EXPECT_EQ(flagsOf(*published), row.flags) << row.name;
  }
}

TEST_F(WebSettingsTest, OnlyTheFirstBlockCounts) {
  const auto ad = freshRecord();
  readVendorBlock(*ad,
                  "<AdditionalWebSettings><canZoom>1</canZoom></AdditionalWebSettings>"
                  "<AdditionalWebSettings><canScroll>1</canScroll></AdditionalWebSettings>");
  EXPECT_EQ(flagsOf(*ad), "z");
}

TEST_F(WebSettingsTest, WithoutTheBlockNothingIsWrittenOrPublished) {
  const auto ad = freshRecord();
  readVendorBlock(*ad, "");
  EXPECT_EQ(flagsOf(*ad), "");
  EXPECT_EQ(TamzoState::getTamzoWebSettings(), nullptr);

  readVendorBlock(*ad, "<AdditionalWebSettings><canZoom>1</canZoom></AdditionalWebSettings>");
  const auto published = TamzoState::getTamzoWebSettings();
  readVendorBlock(*ad, "<canZoom>0</canZoom>");
  EXPECT_EQ(flagsOf(*ad), "z");
  EXPECT_EQ(TamzoState::getTamzoWebSettings(), published) << "the very same object";
}

TEST_F(WebSettingsTest, EveryBlockPublishesANewRecordAndResetsAllFlags) {
  const auto ad = freshRecord();
  readVendorBlock(*ad, "<AdditionalWebSettings><canZoom>1</canZoom></AdditionalWebSettings>");
  const auto first = TamzoState::getTamzoWebSettings();
  readVendorBlock(*ad, "<AdditionalWebSettings><canScroll>1</canScroll></AdditionalWebSettings>");
  const auto second = TamzoState::getTamzoWebSettings();
  EXPECT_NE(first, second);
  EXPECT_EQ(flagsOf(*first), "z") << "who holds the earlier settings keeps them";
  EXPECT_EQ(flagsOf(*second), "s");
  EXPECT_EQ(flagsOf(*ad), "s");
}

TEST_F(WebSettingsTest, NoNodesPublishNothing) {
  const auto ad = freshRecord();
  ad->setCanZoom(true);
  ad->updateAdditionalWebSetting(NodeList());
  ad->updateAdditionalWebSetting(NodeList::makeEmpty());
  EXPECT_TRUE(ad->canZoom());
  EXPECT_EQ(TamzoState::getTamzoWebSettings(), nullptr);
}

TEST_F(WebSettingsTest, ABlockOfAWrapperIsPublishedAndTheInLinesReplacesIt) {
  const auto settings = [](const std::string& flag) {
    return vendorExtension("<AdditionalWebSettings><" + flag + ">1</" + flag +
                           "></AdditionalWebSettings>");
  };
  std::string seenByFetch;
  readUrlsWith([&](const Text&) {
    seenByFetch = flagsOf(*TamzoState::getTamzoWebSettings());
    return inlineAd("3.0", settings("canScroll"));
  });
  const auto ad = TamzoVastAd::initWithVast(wrapper("3.0", settings("canZoom")));
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_EQ(seenByFetch, "z");
  EXPECT_EQ(flagsOf(*ad), "s");
  EXPECT_EQ(flagsOf(*TamzoState::getTamzoWebSettings()), "s");
}

}  // namespace
}  // namespace tamzo::testing
