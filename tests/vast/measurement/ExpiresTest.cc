// How long an ad may be kept.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using ExpiresTest = SdkTest;

TEST_F(ExpiresTest, IsReadAsANumberAndStaysWhereThereIsNone) {
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

TEST_F(ExpiresTest, IsLoggedBeforeItIsLookedAt) {
  const auto ad = freshRecord();
  collectLog();
  ad->updateExpires(rootOf("<I><Expires>45 s</Expires></I>"));
  ad->updateExpires(rootOf("<I/>"));
  const std::string prefix = "[TAMZO-LOG][v8.0.0 p0] Vast Ad Expires ";
  EXPECT_EQ(log(), (std::vector<std::string>{prefix + "45 s", prefix}));
}

TEST_F(ExpiresTest, NothingHappensWithoutNodes) {
  const auto ad = freshRecord();
  const std::string before = recordAsJson(*ad);
  collectLog();
  for (const NodeList& nodes : {NodeList(), NodeList::makeEmpty()}) {
    ad->updateExpires(nodes);
    EXPECT_EQ(recordAsJson(*ad), before);
    EXPECT_TRUE(log().empty());
  }
}

}  // namespace
}  // namespace tamzo::testing
