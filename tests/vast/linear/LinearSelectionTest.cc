// Which Linear can be played, and whether it is a JavaScript VPAID unit.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/Responses.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using LinearSelectionTest = UpdaterTest;

NodeList inlineWith(const std::string& files) {
  return rootOf("<InLine>" + linear("<MediaFiles>" + files + "</MediaFiles>") + "</InLine>");
}

TEST_F(LinearSelectionTest, TheTypesOfItsFilesDecideWhetherItIsUsable) {
  enum Outcome { unusable, video, vpaid };
  struct Row {
    const char* files;
    Outcome outcome;
  };
  const std::vector<Row> rows{
      {"", unusable},
      {"<MediaFile type='video/mp4'/>", video},
      {"<MediaFile type='video/x-mp4'/>", video},
      {"<MediaFile type='video/mp4' apiFramework='VPAID'/>", video},
      {"<MediaFile type='video/mp4' apiFramework='other'/>", video},
      {"<MediaFile type='application/javascript' apiFramework='VPAID'/>", vpaid},
      {"<MediaFile type='application/javascript'/>", unusable},
      {"<MediaFile type='application/javascript' apiFramework='vpaid'/>", unusable},
      {"<MediaFile type='application/javascript' apiFramework='VPAID '/>", unusable},
      {"<MediaFile type='application/javascript' apiFramework=''/>", unusable},
      {"<MediaFile type='application/x-javascript' apiFramework='VPAID'/>", unusable},
      {"<MediaFile type='VIDEO/MP4'/>", unusable},
      {"<MediaFile type=' video/mp4'/>", unusable},
      {"<MediaFile type='video/mp4; codecs=avc1'/>", unusable},
      {"<MediaFile type=''/>", unusable},
      {"<MediaFile/>", unusable},
      {"<MediaFile apiFramework='VPAID'/>", unusable},
      {"<MediaFile type='video/webm'/><MediaFile/><MediaFile type='video/mp4'/>", video},
      {"<MediaFile type='application/javascript' apiFramework='VPAID'/>"
       "<MediaFile type='video/mp4'/>",
       vpaid},
      {"<MediaFile type='video/mp4'/>"
       "<MediaFile type='application/javascript' apiFramework='VPAID'/>",
       video},
      {"<InteractiveCreativeFile type='video/mp4'/>", video},
      {"<InteractiveCreativeFile type='application/javascript' apiFramework='VPAID'/>", vpaid},
      {"<InteractiveCreativeFile type='text/html'/>", unusable},
      {"<MediaFile type='video/webm'/>"
       "<InteractiveCreativeFile type='application/javascript' apiFramework='VPAID'/>",
       unusable},
      {"<MediaFile/><InteractiveCreativeFile type='video/mp4'/>", unusable},
  };
  collectLog();
  for (const Row& row : rows) {
    ad_ = std::make_shared<TamzoVastAd>();
    const std::size_t before = log().size();
    const NodeList linears = ad_->newGetValidLinearNode(inlineWith(row.files));
    EXPECT_EQ(linears.isNil(), row.outcome == unusable) << row.files;
    EXPECT_EQ(ad_->jsVPaidPresent(), row.outcome == vpaid) << row.files;
    EXPECT_EQ(log().size() - before, row.outcome == unusable ? 0U : 1U) << row.files;
    if (row.outcome != unusable) {
      EXPECT_EQ(log().back(), std::string("[TAMZO-LOG][v8.0.0 p0] ") +
                                  (row.outcome == video ? "valid linear node found!"
                                                        : "valid JS vPaid linearNode found!"))
          << row.files;
    }
  }
}

TEST_F(LinearSelectionTest, NoLinearGivesNil) {
  EXPECT_TRUE(ad_->newGetValidLinearNode(NodeList()).isNil());
  EXPECT_TRUE(ad_->newGetValidLinearNode(NodeList::makeEmpty()).isNil());
  EXPECT_TRUE(ad_->newGetValidLinearNode(rootOf("<InLine/>")).isNil());
  EXPECT_TRUE(
      ad_->newGetValidLinearNode(rootOf("<InLine><Creatives><Creative/></Creatives></InLine>"))
          .isNil());
  EXPECT_FALSE(ad_->jsVPaidPresent());
}

TEST_F(LinearSelectionTest, OnlyTheFirstIsJudgedAndAllAreReturned) {
  const std::string mp4 =
      "<Creative><Linear id='mp4'><MediaFiles><MediaFile type='video/mp4'/>"
      "</MediaFiles></Linear></Creative>";
  const std::string webm =
      "<Creative><Linear id='webm'><MediaFiles>"
      "<MediaFile type='video/webm'/></MediaFiles></Linear></Creative>";
  EXPECT_TRUE(ad_->newGetValidLinearNode(
                     rootOf("<InLine><Creatives>" + webm + mp4 + "</Creatives></InLine>"))
                  .isNil());
  const NodeList linears = ad_->newGetValidLinearNode(
      rootOf("<InLine><Creatives>" + mp4 + webm + "</Creatives></InLine>"));
  ASSERT_EQ(linears.size(), 2U);
  EXPECT_EQ(linears.at(0).attributeValue("id"), Text("mp4"));
  EXPECT_EQ(linears.at(1).attributeValue("id"), Text("webm"));
}

TEST_F(LinearSelectionTest, OnlyTheFirstInLineIsJudged) {
  const auto document = parseDocument(
      "<VAST><Ad><InLine/></Ad><Ad><InLine><Creatives><Creative><Linear><MediaFiles>"
      "<MediaFile type='video/mp4'/></MediaFiles></Linear></Creative></Creatives></InLine></Ad>"
      "</VAST>");
  EXPECT_TRUE(ad_->newGetValidLinearNode(document->nodesForXPath("/VAST/Ad/InLine")).isNil());
}

TEST_F(LinearSelectionTest, AJavaScriptUnitWithoutAWrapperLeavesTheTagAlone) {
  ad_->setVastTagURI("before");
  EXPECT_FALSE(ad_->newGetValidLinearNode(
                      inlineWith("<MediaFile type='application/javascript' apiFramework='VPAID'/>"))
                   .isNil());
  EXPECT_TRUE(ad_->jsVPaidPresent());
  EXPECT_EQ(ad_->vastTagURI(), Text("before"));
}

TEST_F(LinearSelectionTest, AJavaScriptUnitBehindAWrapperPutsTheMergedDocumentIntoTheTag) {
  ad_->setAdID("outer");
  ad_->setVpaidVastVersion("4.1");
  ad_->setVpaidXml(TamzoVpaidXML::initWithVpaidWrapperNode(rootOf("<Wrapper/>")));
  ad_->newGetValidLinearNode(
      inlineWith("<MediaFile type='application/javascript' apiFramework='VPAID'>u</MediaFile>"));
  EXPECT_EQ(ad_->vpaidXml()->vastVersion(), Text("4.1"));
  const auto merged = parseDocument(std::string(ad_->vastTagURI().view()));
  ASSERT_NE(merged, nullptr);
  EXPECT_EQ(merged->rootElement().attributeValue("version"), Text("4.1"));
  EXPECT_EQ(merged->nodesForXPath("/VAST/Ad").at(0).attributeValue("id"), Text("outer"));
}

TEST_F(LinearSelectionTest, AnyInteractiveFileWithTextCountsAsAJavaScriptUnit) {
  struct Row {
    const char* files;
    bool isPresent;
  };
  const std::vector<Row> rows{
      {"", false},
      {"<MediaFile>u</MediaFile>", false},
      {"<InteractiveCreativeFile/>", false},
      {"<InteractiveCreativeFile><!--u--></InteractiveCreativeFile>", false},
      {"<InteractiveCreativeFile/><InteractiveCreativeFile>u</InteractiveCreativeFile>", false},
      {"<InteractiveCreativeFile>u</InteractiveCreativeFile>", true},
      {"<InteractiveCreativeFile> </InteractiveCreativeFile>", true},
      {"<InteractiveCreativeFile type='text/html'>u</InteractiveCreativeFile>", true},
      {"<MediaFile/><InteractiveCreativeFile><![CDATA[u]]></InteractiveCreativeFile>", true},
  };
  for (const Row& row : rows) {
    ad_ = std::make_shared<TamzoVastAd>();
    ad_->hasVPAIDMedia(
        rootOf(std::string("<Linear><MediaFiles>") + row.files + "</MediaFiles></Linear>"));
    EXPECT_EQ(ad_->jsVPaidPresent(), row.isPresent) << row.files;
  }
  ad_->setJsVPaidPresent(true);
  ad_->hasVPAIDMedia(rootOf("<Linear/>"));
  ad_->hasVPAIDMedia(NodeList());
  EXPECT_TRUE(ad_->jsVPaidPresent()) << "never taken back";
}

}  // namespace
}  // namespace tamzo::testing
