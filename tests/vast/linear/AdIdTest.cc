// The id of the ad.

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using AdIdTest = UpdaterTest;

TEST_F(AdIdTest, TheAdIdIsTakenAsItStands) {
  struct Row {
    const char* ad;
    const char* id;
    bool isLogged;
  };
  const std::vector<Row> rows{
      {"<Ad id='7'/>", "7", false},     {"<Ad id=' 7 '/>", " 7 ", false},
      {"<Ad id=''/>", "", false},       {"<Ad/>", "before", true},
      {"<Ad ID='7'/>", "before", true}, {"<Ad x:id='7' xmlns:x='urn:x'/>", "before", true},
  };
  collectLog();
  for (const Row& row : rows) {
    ad_->setAdID("before");
    const std::size_t before = log().size();
    ad_->updateAdID(rootOf(row.ad));
    EXPECT_EQ(ad_->adID(), Text(row.id)) << row.ad;
    EXPECT_EQ(log().size() - before, row.isLogged ? 1U : 0U) << row.ad;
  }
  for (const NodeList& none : {NodeList(), NodeList::makeEmpty()}) {
    const std::size_t before = log().size();
    ad_->updateAdID(none);
    EXPECT_EQ(log().size(), before + 1);
  }
  EXPECT_EQ(log().back(), "[TAMZO-LOG][v8.0.0 p0] no valid ad-id!");
}

TEST_F(AdIdTest, OnlyTheFirstAdIsAsked) {
  const auto document = parseDocument("<VAST><Ad/><Ad id='2'/></VAST>");
  ad_->setAdID("before");
  ad_->updateAdID(document->nodesForXPath("/VAST/Ad"));
  EXPECT_EQ(ad_->adID(), "before");
}

TEST_F(AdIdTest, AnIdOutlivesItsDocument) {
  ad_->updateAdID(rootOf("<Ad id='an id that takes memory of its own, &lt;as it is long>'/>"));
  EXPECT_EQ(ad_->adID(), "an id that takes memory of its own, <as it is long>");
}

}  // namespace
}  // namespace tamzo::testing
