// The linear creative: which Linear is taken, and what is read from it.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using Linear = UpdaterTest;

NodeList inlineWith(const std::string& files) {
  return rootOf("<InLine><Creatives><Creative><Linear><MediaFiles>" + files +
                "</MediaFiles></Linear></Creative></Creatives></InLine>");
}

// ---- Which Linear --------------------------------------------------------------------------

TEST_F(Linear, TheTypesOfItsFilesDecideWhetherItIsUsable) {
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

TEST_F(Linear, NoLinearGivesNil) {
  EXPECT_TRUE(ad_->newGetValidLinearNode(NodeList()).isNil());
  EXPECT_TRUE(ad_->newGetValidLinearNode(NodeList::makeEmpty()).isNil());
  EXPECT_TRUE(ad_->newGetValidLinearNode(rootOf("<InLine/>")).isNil());
  EXPECT_TRUE(
      ad_->newGetValidLinearNode(rootOf("<InLine><Creatives><Creative/></Creatives></InLine>"))
          .isNil());
  EXPECT_FALSE(ad_->jsVPaidPresent());
}

TEST_F(Linear, OnlyTheFirstIsJudgedAndAllAreReturned) {
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

TEST_F(Linear, OnlyTheFirstInLineIsJudged) {
  const auto document = parseDocument(
      "<VAST><Ad><InLine/></Ad><Ad><InLine><Creatives><Creative><Linear><MediaFiles>"
      "<MediaFile type='video/mp4'/></MediaFiles></Linear></Creative></Creatives></InLine></Ad>"
      "</VAST>");
  EXPECT_TRUE(ad_->newGetValidLinearNode(document->nodesForXPath("/VAST/Ad/InLine")).isNil());
}

TEST_F(Linear, AJavaScriptUnitWithoutAWrapperLeavesTheTagAlone) {
  ad_->setVastTagURI("before");
  EXPECT_FALSE(ad_->newGetValidLinearNode(
                      inlineWith("<MediaFile type='application/javascript' apiFramework='VPAID'/>"))
                   .isNil());
  EXPECT_TRUE(ad_->jsVPaidPresent());
  EXPECT_EQ(ad_->vastTagURI(), Text("before"));
}

TEST_F(Linear, AJavaScriptUnitBehindAWrapperPutsTheMergedDocumentIntoTheTag) {
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

TEST_F(Linear, AnyInteractiveFileWithTextCountsAsAJavaScriptUnit) {
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

// ---- Media files ---------------------------------------------------------------------------

TEST_F(Linear, EveryMediaFileIsRecordedInOrder) {
  ad_->updateMediaFiles(rootOf(
      "<Linear><MediaFiles><MediaFile type='video/webm'>1</MediaFile><Mezzanine>m</Mezzanine>"
      "<MediaFile type='video/mp4'> 2 </MediaFile>"
      "<InteractiveCreativeFile type='video/mp4'>x</InteractiveCreativeFile>"
      "<MediaFile type='video/3gpp'>3</MediaFile></MediaFiles></Linear>"));
  const auto& files = *ad_->mediaFiles();
  ASSERT_EQ(files.size(), 3U);
  EXPECT_EQ(files[0]->type(), Text("video/webm"));
  EXPECT_EQ(files[1]->type(), Text("video/mp4"));
  EXPECT_EQ(files[1]->url(), Text("2"));
  EXPECT_EQ(files[2]->type(), Text("video/3gpp"));
}

TEST_F(Linear, MediaFilesOfASecondRunTakeTheSamePlaces) {
  ad_->updateMediaFiles(
      rootOf("<Linear><MediaFiles><MediaFile>1</MediaFile>"
             "<MediaFile>2</MediaFile></MediaFiles></Linear>"));
  ad_->updateMediaFiles(
      rootOf("<Linear><MediaFiles><MediaFile>3</MediaFile></MediaFiles></Linear>"));
  ASSERT_EQ(ad_->mediaFiles()->size(), 2U);
  EXPECT_EQ((*ad_->mediaFiles())[0]->url(), Text("3"));
  EXPECT_EQ((*ad_->mediaFiles())[1]->url(), Text("2"));
  ad_->updateMediaFiles(NodeList());
  ad_->updateMediaFiles(rootOf("<Linear/>"));
  EXPECT_EQ(ad_->mediaFiles()->size(), 2U);
}

TEST_F(Linear, AMediaFileCannotBePutBeyondTheEnd) {
  const DDXMLElement file = rootOf("<MediaFile>u</MediaFile>").at(0);
  EXPECT_THROW(ad_->addOrSetMediaFile(file, 1), std::out_of_range);
  EXPECT_THROW(ad_->addOrSetMediaFile(file, -1), std::out_of_range);
  ad_->addOrSetMediaFile(DDXMLElement(), 0);
  EXPECT_TRUE(ad_->mediaFiles()->empty());
  ad_->addOrSetMediaFile(file, 0);
  EXPECT_EQ(ad_->mediaFiles()->size(), 1U);
}

// ---- Duration and skip offset --------------------------------------------------------------

TEST_F(Linear, ItsDurationIsReadAndLogged) {
  collectLog();
  ad_->updateDuration(
      rootOf("<Linear><Duration> 00:00:30 </Duration><Duration>x</Duration></Linear>"));
  ASSERT_NE(ad_->duration(), nullptr);
  EXPECT_EQ(ad_->duration()->text(), Text(" 00:00:30 "));
  EXPECT_EQ(ad_->duration()->durationInSeconds(), 30);
  ASSERT_EQ(log().size(), 3U);
  EXPECT_TRUE(logged("Vast Ad Duration  00:00:30 "));
  EXPECT_TRUE(log()[1].starts_with("[TAMZO-LOG][v8.0.0 p0] Duration Object Class Type is "));
  EXPECT_TRUE(logged("Duration: 30"));
}

TEST_F(Linear, AnEmptyDurationKeepsTheOneBefore) {
  const auto before = TamzoAdDuration::initFromString("00:00:10");
  ad_->setDuration(before);
  collectLog();
  ad_->updateDuration(rootOf("<Linear><Duration/></Linear>"));
  EXPECT_EQ(log().size(), 2U);
  ad_->updateDuration(rootOf("<Linear/>"));
  ad_->updateDuration(NodeList());
  EXPECT_EQ(ad_->duration(), before);
}

TEST_F(Linear, ASkipOffsetIsAClockTimeOrAShareOfTheDuration) {
  struct Row {
    Text offset;
    const char* duration;  // null for none
    double millis;
  };
  const std::vector<Row> rows{
      {"00:00:05", nullptr, 5000},
      {"01:02:03", nullptr, 3723000},
      {"00:00:05.750", nullptr, 5000},
      {" 0: 1: 5", nullptr, 65000},
      {"+0:+1:+5", nullptr, 65000},
      {"0:0:-5", nullptr, -5000},
      {"00:01:05:99", nullptr, 65000},
      {"::5", nullptr, 5000},
      {"::", nullptr, 0},
      {"1::", nullptr, 3600000},
      {"a:b:7s", nullptr, 7000},
      {"", nullptr, 0},
      {"5", nullptr, 0},
      {"00:05", nullptr, 0},
      {"garbage", nullptr, 0},
      // 32-bit arithmetic, which wraps: 2147483 s are the most it can tell.
      {"00:00:2147483", nullptr, 2147483000},
      {"00:00:2147484", nullptr, -2147483296},
      {"596:31:24", nullptr, -2147483296},
      {"00:00:2147483647", nullptr, -1000},
      {"00:00:99999999999", nullptr, -1000},
      {"2147483647:2147483647:2147483647", nullptr, -3661000},
      {"-596523:-14:-8", nullptr, 0},
      {"10%", "00:00:30", 3000},
      {"12.5%", "00:00:30", 3750},
      {"150%", "00:00:30", 45000},
      {"-10%", "00:00:30", -3000},
      {" 10 %", "00:00:30", 3000},
      {"10%%", "00:00:30", 3000},
      {"1e1%", "00:00:30", 3000},
      {"%", "00:00:30", 0},
      {"abc%", "00:00:30", 0},
      {"00:00:05%", "00:00:30", 0},
      {"10%", nullptr, 0},
      {"10%", "garbage", 0},
      {"10% ", "00:00:30", 0},
      // In exactly this order: first times, then by, then times.
      {"7%", "00:00:15", ((15.0 * 7.0) / 100.0) * 1000.0},
      {"33.3%", "00:00:31", ((31.0 * 33.3) / 100.0) * 1000.0},
  };
  for (const Row& row : rows) {
    ad_->setSkipOffsetMillis(1.0);
    ad_->setDuration(row.duration == nullptr ? nullptr
                                             : TamzoAdDuration::initFromString(row.duration));
    ad_->updateSkipOffset(row.offset);
    EXPECT_EQ(ad_->skipOffsetMillis(), row.millis) << row.offset;
  }
  ad_->setDuration(nullptr);
  ad_->updateSkipOffset("1e999%");
  EXPECT_TRUE(std::isnan(ad_->skipOffsetMillis())) << "an infinite share of nothing";
  ad_->updateSkipOffset("-0%");
  EXPECT_TRUE(std::signbit(ad_->skipOffsetMillis())) << "0 below zero";
  ad_->setDuration(TamzoAdDuration::initFromString("00:00:30"));
  ad_->updateSkipOffset("1e999%");
  EXPECT_EQ(ad_->skipOffsetMillis(), std::numeric_limits<double>::infinity());

  ad_->setSkipOffsetMillis(1.0);
  ad_->updateSkipOffset(Text());
  EXPECT_EQ(ad_->skipOffsetMillis(), 1.0) << "nil changes nothing";
}

}  // namespace
}  // namespace tamzo::testing
