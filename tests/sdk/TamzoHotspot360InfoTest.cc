#include "tamzo/sdk/TamzoHotspot360Info.h"

#include <gtest/gtest.h>

#include "tests/support/Documents.h"

namespace tamzo::testing {
namespace {

TEST(TamzoHotspot360InfoTest, AHotspotWithNothingToReadIsRefused) {
  const struct {
    const char* xml;
    bool isRead;
  } rows[] = {
      {"<H/>", false},
      {"<H></H>", false},
      {"<H> \n\t\xC2\xA0\xE3\x80\x80</H>", false},
      {"<H><!-- x --></H>", false},
      {"<H><?x y?></H>", false},
      {"<H><![CDATA[ ]]></H>", false},
      {"<H>x</H>", true},
      {"<H><![CDATA[x]]></H>", true},
      {"<H id=''/>", true},
      {"<H><X/></H>", true},
      {"<H> <!-- x --> <X/></H>", true},
  };
  for (const auto& row : rows) {
    const auto hotspot = TamzoHotspot360Info::initWithNode(root(row.xml));
    EXPECT_EQ(hotspot != nullptr, row.isRead) << row.xml;
    if (hotspot != nullptr) {
      EXPECT_EQ(hotspot->node().name(), "H");
    }
  }
  EXPECT_EQ(TamzoHotspot360Info::initWithNode(DDXMLElement()), nullptr);
}

}  // namespace
}  // namespace tamzo::testing
