// What a Wrapper says of the document behind it.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/Responses.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using WrapperTagTest = UpdaterTest;

TEST(VastTagURI, IsTheUntrimmedTextOfTheFirst) {
  const std::vector<std::pair<const char*, const char*>> rows{
      {"<W><VASTAdTagURI>u</VASTAdTagURI></W>", "u"},
      {"<W><VASTAdTagURI> <![CDATA[ u?a&b ]]>\n</VASTAdTagURI></W>", "  u?a&b \n"},
      {"<W><VASTAdTagURI>1</VASTAdTagURI><VASTAdTagURI>2</VASTAdTagURI></W>", "1"},
      {"<W><VASTAdTagURI/><VASTAdTagURI>2</VASTAdTagURI></W>", ""},
      {"<W><Other/></W>", ""},
  };
  for (const auto& [xml, uri] : rows) {
    EXPECT_EQ(TamzoVastAd::getVastTagURI(rootOf(xml)), Text(uri)) << xml;
  }
  EXPECT_EQ(TamzoVastAd::getVastTagURI(NodeList()), Text(""));
  EXPECT_EQ(TamzoVastAd::getVastTagURI(NodeList::makeEmpty()), Text(""));
  EXPECT_EQ(
      TamzoVastAd::getVastTagURI(
          parseDocument("<A><W/><W><VASTAdTagURI>2</VASTAdTagURI></W></A>")->nodesForXPath("/A/W")),
      Text(""))
      << "only the first Wrapper counts";
}

TEST(WrapperLinear, IsEveryLinearOfTheFirstOrNil) {
  const NodeList linears = TamzoVastAd::getWrapperLinearNode(
      rootOf("<W><Creatives><Creative><Linear id='1'/></Creative><Creative/>"
             "<Creative><Linear id='2'/></Creative></Creatives></W>"));
  ASSERT_EQ(linears.size(), 2U);
  EXPECT_EQ(linears.at(1).attributeValue("id"), Text("2"));
  EXPECT_TRUE(TamzoVastAd::getWrapperLinearNode(rootOf("<W/>")).isNil());
  EXPECT_TRUE(TamzoVastAd::getWrapperLinearNode(rootOf("<W><Creative/></W>")).isNil());
  EXPECT_TRUE(TamzoVastAd::getWrapperLinearNode(NodeList()).isNil());
  EXPECT_TRUE(TamzoVastAd::getWrapperLinearNode(NodeList::makeEmpty()).isNil());
}

TEST_F(WrapperTagTest, TheTagIsKnownToTheMacrosThatAreFilledInIt) {
  MacroHooks hooks;
  hooks.replace = [](const Text& text, const TamzoVastAd& ad) {
    EXPECT_TRUE(ad.vastTagURI().isSameObject(text));
    return Text(std::string(text.view()) + "+filled");
  };
  fillMacrosWith(std::move(hooks));
  collectLog();
  EXPECT_FALSE(ad_->processVASTVersion3(1, *parseDocument(wrapper("3.0", "", " a "))));
  EXPECT_EQ(ad_->vastTagURI(), " a +filled");
  EXPECT_TRUE(logged("VastTagURI:  a +filled"));
}

TEST_F(WrapperTagTest, AHostMayLeaveNoTagAtAll) {
  MacroHooks hooks;
  hooks.replace = [](const Text&, const TamzoVastAd&) { return Text(); };
  fillMacrosWith(std::move(hooks));
  const auto ad = TamzoVastAd::initWithVast(wrapper("3.0", "<Impression>i</Impression>"));
  EXPECT_TRUE(ad->vastTagURI().isNil());
  EXPECT_EQ(ad->errorCode(), kException) << "nothing to go on with";
  EXPECT_EQ(ad->trackers()->find("Impression")->size(), 1U);
}

}  // namespace
}  // namespace tamzo::testing
