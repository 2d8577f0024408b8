// The impressions of a chain.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using ImpressionsTest = UpdaterTest;

using Pairs = UrlsAndOffsets;

TEST_F(ImpressionsTest, ImpressionsAddUpEmptyOnesIncluded) {
  collectLog();
  ad_->updateImpressions(NodeList());
  EXPECT_EQ(trackers("Impression"), Pairs{}) << "the list is there even without an ad";
  ad_->updateImpressions(rootOf("<InLine/>"));
  EXPECT_TRUE(log().empty());
  ad_->updateImpressions(rootOf("<Wrapper><Impression> a </Impression><Impression/></Wrapper>"));
  ad_->updateImpressions(rootOf("<InLine><Impression id='1'><![CDATA[b]]></Impression></InLine>"));
  EXPECT_EQ(trackers("Impression"), (Pairs{{" a ", ""}, {"", ""}, {"b", ""}}));
  EXPECT_EQ(log(), (Names{"[TAMZO-LOG][v8.0.0 p0] impressions added!",
                          "[TAMZO-LOG][v8.0.0 p0] impressions added!"}));
}

TEST_F(ImpressionsTest, OnlyTheFirstAdIsRead) {
  ad_->updateImpressions(
      parseDocument("<A><I><Impression>1</Impression></I><I><Impression>2</Impression></I></A>")
          ->nodesForXPath("/A/I"));
  EXPECT_EQ(trackers("Impression"), (Pairs{{"1", ""}}));
}

}  // namespace
}  // namespace tamzo::testing
