// Where clicks on the video lead, and the custom clicks.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using ClicksTest = UpdaterTest;

using Pairs = UrlsAndOffsets;

NodeList linearWithClicks(const std::string& clicks) {
  return rootOf("<Linear><VideoClicks>" + clicks + "</VideoClicks></Linear>");
}

TEST_F(ClicksTest, TheLastClickThroughWithTextWins) {
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

TEST_F(ClicksTest, CustomClicksReplaceThoseBefore) {
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

}  // namespace
}  // namespace tamzo::testing
