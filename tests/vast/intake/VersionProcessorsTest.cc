// What is read from which version of a document, and in which order, as log lines and the order
// of tracker names show it.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Responses.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

// Everything that some version reads from a Wrapper or an InLine.
std::string everything(const std::string& files, const std::string& category = "IAB1") {
  return "<Impression>i</Impression>"
         "<ViewableImpression><Viewable>v</Viewable></ViewableImpression>"
         "<AdVerifications><Verification><ViewableImpression>a</ViewableImpression>"
         "</Verification></AdVerifications>"
         "<Expires>60</Expires><Category>" +
         category +
         "</Category><UniversalAdId idRegistry='r' idValue='u'/>"
         "<Creatives><Creative><Linear skipoffset='00:00:05'><Duration>00:00:30</Duration>"
         "<TrackingEvents><Tracking event='start'>s</Tracking></TrackingEvents>"
         "<VideoClicks><ClickThrough>t</ClickThrough><CustomClick>c</CustomClick></VideoClicks>"
         "<Icons><Icon program='p'/></Icons><MediaFiles>" +
         files +
         "</MediaFiles></Linear></Creative>"
         "<Creative><CompanionAds><Companion id='k'/></CompanionAds></Creative></Creatives>"
         "<Extensions><Extension><Tamzo><TrackId>x</TrackId><canReplay>r</canReplay>"
         "<ExtraTrackingEvents><Tracking event='extra'>e</Tracking></ExtraTrackingEvents></Tamzo>"
         "</Extension><Extension><AdVerifications><Verification vendor='o'/></AdVerifications>"
         "</Extension></Extensions>";
}
const std::string kMp4 = "<MediaFile type='video/mp4'>u</MediaFile>";
const std::string kUnit =
    "<MediaFile type='application/javascript' apiFramework='VPAID'>u</MediaFile>";

std::string inlineOf(const std::string& inside) { return bareInline("x", inside); }
std::string wrapperOf(const std::string& inside) { return wrapper("x", inside, " tag [M] "); }

class VersionProcessorsTest : public UpdaterTest {
 protected:
  VersionProcessorsTest() { collectLog(); }

  // Processes `xml` with a new record.
  bool process(int version, const std::string& xml, int pass = 1) {
    ad_ = TamzoVastAd::initWithVast("    ");
    ad_->setErrorCode(0);
    linesBefore_ = log().size();
    return processAlso(version, xml, pass);
  }
  // Processes `xml` with the record that there is.
  bool processAlso(int version, const std::string& xml, int pass) {
    const auto document = parseDocument(xml);
    return version == 2   ? ad_->processVASTVersion2(pass, *document)
           : version == 3 ? ad_->processVASTVersion3(pass, *document)
                          : ad_->processVASTVersion4(pass, *document);
  }

  // The lines since, without their prefix; what class a duration's text is of is left out.
  Names lines() const {
    Names messages;
    const auto all = log();
    for (std::size_t i = linesBefore_; i < all.size(); ++i) {
      EXPECT_TRUE(all[i].starts_with("[TAMZO-LOG][v8.0.0 p0] ")) << all[i];
      std::string message = all[i].substr(std::string("[TAMZO-LOG][v8.0.0 p0] ").size());
      const std::string classLine = "Duration Object Class Type is ";
      messages.push_back(message.starts_with(classLine) ? classLine : message);
    }
    return messages;
  }

  std::size_t linesBefore_ = 0;
};

TEST(VastVersion, IsTheAttributeOfTheRootCalledVast) {
  const std::vector<std::pair<const char*, Text>> rows{
      {"<VAST version='4.2'/>", "4.2"},
      {"<VAST version=' 3 '/>", " 3 "},
      {"<VAST version=''/>", ""},
      {"<VAST/>", Text()},
      {"<vast version='3'/>", Text()},
      {"<R><VAST version='3'/></R>", Text()},
      {"<VAST xmlns='urn:v' version='3'/>", Text()},
      {"<VAST xmlns:x='urn:v' x:version='3'/>", Text()},
  };
  for (const auto& [xml, version] : rows) {
    EXPECT_EQ(TamzoVastAd::getVastVersion(*parseDocument(xml)), version) << xml;
  }
}

// ---- Failures ------------------------------------------------------------------------------

TEST_F(VersionProcessorsTest, FailuresHaveTheirCodeLineAndResult) {
  struct Row {
    std::string xml;
    int code;
    bool isDone;
    Names lines;
  };
  const std::vector<Row> rows{
      {"<VAST/>", kNoAd, false, {"Ad element is absent!"}},
      {"<Other><Ad/></Other>", kNoAd, false, {"Ad element is absent!"}},
      {"<VAST><Error/></VAST>", kNoAd, false, {"Ad element is absent!"}},
      {"<VAST><Ad id='1'/></VAST>",
       kNoWrapperOrInLine,
       true,
       {"AD ID updated to: 1", "This is not a wrapper!", "Inline Node Absent"}},
      {"<VAST><Ad><Inline/></Ad></VAST>",
       kNoWrapperOrInLine,
       true,
       {"no valid ad-id!", "AD ID updated to: (null)", "This is not a wrapper!",
        "Inline Node Absent"}},
  };
  for (const int version : {2, 3, 4}) {
    for (const Row& row : rows) {
      EXPECT_EQ(process(version, row.xml), row.isDone) << version << ' ' << row.xml;
      EXPECT_EQ(ad_->errorCode(), row.code) << version << ' ' << row.xml;
      EXPECT_EQ(lines(), row.lines) << version << ' ' << row.xml;
    }
  }
}

TEST_F(VersionProcessorsTest, AnInLineWithoutAUsableLinearKeepsImpressionsAndCompanions) {
  for (const int version : {2, 3, 4}) {
    EXPECT_TRUE(process(version, inlineOf(everything("<MediaFile type='video/webm'/>"))));
    EXPECT_EQ(ad_->errorCode(), kNoUsableLinear) << version;
    EXPECT_EQ(lines().back(), "No compatible linear node") << version;
    EXPECT_EQ(trackerNames(), version == 4 ? (Names{"Impression", "Viewable", "NotViewable",
                                                    "ViewUndetermined", "AdVerificationViewable"})
                                           : Names{"Impression"})
        << version;
    EXPECT_EQ(ad_->companionAds()->size(), 1U) << version;
    EXPECT_EQ(ad_->skipOffsetMillis(), version == 2 ? 0 : 5000) << version;
    EXPECT_TRUE(ad_->trackId().isNil()) << version << ": extensions are left alone";
    EXPECT_TRUE(ad_->mediaFiles()->empty()) << version;
    EXPECT_TRUE(ad_->measurementProviderList()->empty()) << version;
    EXPECT_EQ(ad_->duration(), nullptr) << version;
  }
}

TEST_F(VersionProcessorsTest, ABlockedCategoryStopsAVersion4AdAtOnce) {
  blockCategories("IAB7,IAB1");
  EXPECT_FALSE(process(4, inlineOf(everything(kMp4))));
  EXPECT_EQ(ad_->errorCode(), kCategoryBlocked);
  EXPECT_EQ(lines().back(), "Vast Ad Category is blocked");
  EXPECT_EQ(trackerNames(), (Names{"Impression", "Viewable", "NotViewable", "ViewUndetermined",
                                   "AdVerificationViewable"}));
  EXPECT_EQ(ad_->expires(), 60.0);
  EXPECT_TRUE(ad_->univversalIDRegistry().isNil());
  EXPECT_EQ(ad_->skipOffsetMillis(), 0.0);
  EXPECT_TRUE(ad_->companionAds()->empty());
  EXPECT_TRUE(ad_->mediaFiles()->empty());

  for (const int version : {2, 3}) {
    EXPECT_TRUE(process(version, inlineOf(everything(kMp4))));
    EXPECT_EQ(ad_->errorCode(), 0) << version << " knows no categories";
    EXPECT_TRUE(ad_->categoryArray()->empty()) << version;
  }
}

// ---- InLine --------------------------------------------------------------------------------

TEST_F(VersionProcessorsTest, AnInLineIsReadInTheOrderOfItsVersion) {
  const Names opening{"AD ID updated to: inline", "This is not a wrapper!", "This is inline VAST!",
                      "impressions added!"};
  const Names closing{"Added Extra Action", "Vast Ad Duration 00:00:30",
                      "Duration Object Class Type is ", "Duration: 30", "Click Through updated!"};
  struct Row {
    int version;
    Names between;
    Names trackers;
  };
  const std::vector<Row> rows{
      {2, {"valid linear node found!"}, {"Impression", "canReplay", "start", "ClickTracking"}},
      {3, {"valid linear node found!"}, {"Impression", "start", "ClickTracking", "canReplay"}},
      {4,
       {"Vast Ad Expires 60", "[Blocked ad category: (null)] and [Vast Ad Category : IAB1,]",
        "Universal AdId Info idRegistryNode = r idValueNode = u", "valid linear node found!",
        "edc"},
       {"Impression", "Viewable", "NotViewable", "ViewUndetermined", "AdVerificationViewable",
        "start", "ClickTracking", "canReplay", "extra", "CustomClickTracker"}},
  };
  for (const Row& row : rows) {
    EXPECT_TRUE(process(row.version, inlineOf(everything(kMp4)))) << row.version;
    EXPECT_EQ(ad_->errorCode(), 0) << row.version;
    Names expected = opening;
    expected.insert(expected.end(), row.between.begin(), row.between.end());
    expected.insert(expected.end(), closing.begin(), closing.end());
    EXPECT_EQ(lines(), expected) << row.version;
    EXPECT_EQ(trackerNames(), row.trackers) << row.version;
    EXPECT_EQ(ad_->skipOffsetMillis(), row.version == 2 ? 0 : 5000) << row.version;
    EXPECT_EQ(ad_->trackId(), Text("x")) << row.version;
    EXPECT_EQ(ad_->measurementProviderList()->size(), 1U) << row.version;
    EXPECT_EQ(ad_->mediaFiles()->size(), 1U) << row.version;
    EXPECT_EQ(ad_->companionAds()->size(), 1U) << row.version;
    EXPECT_EQ(ad_->expires(), row.version == 4 ? 60.0 : 0.0) << row.version;
    EXPECT_EQ(ad_->universalIDValue(), row.version == 4 ? Text("u") : Text()) << row.version;
    EXPECT_EQ(ad_->vpaidXml(), nullptr) << row.version;
    EXPECT_EQ(ad_->clickThrough(), Text("t")) << row.version;
  }
}

TEST_F(VersionProcessorsTest, AJavaScriptUnitBringsItsOwnLinearExceptInVersion4) {
  for (const int version : {2, 3, 4}) {
    const bool isRead = version == 4;
    EXPECT_TRUE(process(version, inlineOf(everything(kUnit))));
    EXPECT_EQ(ad_->errorCode(), 0) << version;
    EXPECT_TRUE(ad_->jsVPaidPresent()) << version;
    EXPECT_EQ(lines().back() == "JS Vpaid present", !isRead) << lines().back();
    EXPECT_EQ(ad_->extraActions().list()->size(), isRead ? 1U : 0U) << version;
    EXPECT_EQ(ad_->duration() != nullptr, isRead) << version;
    EXPECT_EQ(ad_->clickThrough(), isRead ? Text("t") : Text()) << version;
    EXPECT_EQ(ad_->mediaFiles()->size(), isRead ? 1U : 0U) << version;
    EXPECT_NE(ad_->trackers()->find("start"), nullptr) << version;
    EXPECT_EQ(ad_->trackId(), Text("x")) << version;
    EXPECT_EQ(ad_->companionAds()->size(), 1U) << version;
  }
}

TEST_F(VersionProcessorsTest, AnInteractiveFileBesideAVideoIsLookedForInVersion4) {
  for (const int version : {2, 3, 4}) {
    process(version,
            inlineOf(everything(kMp4 + "<InteractiveCreativeFile>u</InteractiveCreativeFile>")));
    EXPECT_EQ(ad_->jsVPaidPresent(), version == 4) << version;
    EXPECT_EQ(ad_->mediaFiles()->size(), 1U) << version;
  }
}

TEST_F(VersionProcessorsTest, AShareOfTheDurationIsTakenBeforeThereIsOne) {
  std::string inside = everything(kMp4);
  inside.replace(inside.find("00:00:05"), 8, "50%");
  for (const int version : {3, 4}) {
    process(version, inlineOf(inside));
    EXPECT_EQ(ad_->skipOffsetMillis(), 0.0) << version;
  }
  processAlso(3, inlineOf(inside), 2);
  EXPECT_EQ(ad_->skipOffsetMillis(), 15000.0)
      << "a second document finds the duration of the first";
}

TEST_F(VersionProcessorsTest, AnEmptySkipOffsetIsNotRead) {
  std::string inside = everything(kMp4);
  inside.replace(inside.find("00:00:05"), 8, "");
  process(3, inlineOf(inside));
  ad_->setSkipOffsetMillis(7.0);
  processAlso(3, inlineOf(inside), 2);
  EXPECT_EQ(ad_->skipOffsetMillis(), 7.0);
}

TEST_F(VersionProcessorsTest, TheAdIdIsThatOfTheFirstPass) {
  for (const int version : {2, 3, 4}) {
    for (const int pass : {0, 2, 3, 6}) {
      process(version, inlineOf(everything(kMp4)), pass);
      EXPECT_TRUE(ad_->adID().isNil()) << version << ' ' << pass;
      EXPECT_EQ(lines()[0], "This is not a wrapper!") << version << ' ' << pass;
    }
  }
}

// ---- Wrapper -------------------------------------------------------------------------------

TEST_F(VersionProcessorsTest, AWrapperIsReadInTheOrderOfItsVersion) {
  const Names common{"AD ID updated to: wrapper", "This is wrapper node",
                     "VastTagURI:  tag filled ", "impressions added!"};
  MacroHooks hooks;
  hooks.replace = [](const Text& text, const TamzoVastAd& ad) {
    EXPECT_EQ(text, Text(" tag [M] "));
    EXPECT_EQ(ad.vastTagURI(), Text(" tag [M] "));
    EXPECT_EQ(ad.trackers()->size(), 0U) << "the tag is resolved before anything is read";
    return Text(" tag filled ");
  };
  fillMacrosWith(std::move(hooks));
  for (const int version : {2, 3, 4}) {
    EXPECT_FALSE(process(version, wrapperOf(everything(kMp4))));
    EXPECT_EQ(ad_->errorCode(), 0) << version;
    EXPECT_EQ(ad_->vastTagURI(), Text(" tag filled ")) << version;
    Names expected = common;
    Names trackers{"Impression", "start", "ClickTracking", "canReplay"};
    if (version == 4) {
      expected.emplace_back("edc");
      trackers = {"Impression", "Viewable",      "NotViewable", "ViewUndetermined",
                  "start",      "ClickTracking", "canReplay",   "extra"};
    }
    EXPECT_EQ(lines(), expected) << version;
    EXPECT_EQ(trackerNames(), trackers) << version;
    EXPECT_EQ(ad_->companionAds()->size(), 1U) << version;
    EXPECT_EQ(ad_->trackId(), Text("x")) << version;
    EXPECT_EQ(ad_->measurementProviderList()->size(), 1U) << version;
    // What belongs to an InLine alone:
    EXPECT_TRUE(ad_->mediaFiles()->empty()) << version;
    EXPECT_EQ(ad_->duration(), nullptr) << version;
    EXPECT_TRUE(ad_->clickThrough().isNil()) << version;
    EXPECT_EQ(ad_->skipOffsetMillis(), 0.0) << version;
    EXPECT_TRUE(ad_->extraActions().list()->empty()) << version;
    EXPECT_EQ(ad_->expires(), 0.0) << version;
    EXPECT_TRUE(ad_->categoryArray()->empty()) << version;
    EXPECT_TRUE(ad_->univversalIDRegistry().isNil()) << version;
    // And what the merged document of a JavaScript unit needs:
    ASSERT_NE(ad_->vpaidXml(), nullptr) << version;
    EXPECT_EQ(ad_->vpaidXml()->vastVersion(), version == 2 ? Text() : Text("x")) << version;
    EXPECT_EQ(ad_->vpaidXml()->adNode().at(0).attributeValue("id"), Text("wrapper")) << version;
  }
}

TEST_F(VersionProcessorsTest, AnUnknownTagIsEmptyTextAndMacrosAreFilledInItToo) {
  int calls = 0;
  MacroHooks hooks;
  hooks.replace = [&calls](const Text& text, const TamzoVastAd&) {
    ++calls;
    EXPECT_EQ(text, Text(""));
    return text;
  };
  fillMacrosWith(std::move(hooks));
  for (const char* inside : {"", "<VASTAdTagURI/>", "<X><VASTAdTagURI>u</VASTAdTagURI></X>"}) {
    EXPECT_FALSE(
        process(3, std::string("<VAST><Ad><Wrapper>") + inside + "</Wrapper></Ad></VAST>"));
    EXPECT_EQ(ad_->vastTagURI(), Text("")) << inside;
  }
  EXPECT_EQ(calls, 3);
}

TEST_F(VersionProcessorsTest, EachWrapperReplacesTheRecordOfTheOneBefore) {
  process(3, wrapperOf(""));
  const auto first = ad_->vpaidXml();
  processAlso(4, wrapperOf(""), 2);
  EXPECT_NE(ad_->vpaidXml(), first);
}

TEST_F(VersionProcessorsTest, AWrapperAnywhereMakesADocumentAWrapper) {
  const std::string both[] = {
      "<VAST><Ad><InLine/><Wrapper/></Ad></VAST>",
      "<VAST><Ad><InLine/></Ad><Ad><Wrapper/></Ad></VAST>",
  };
  for (const int version : {2, 3, 4}) {
    for (const std::string& xml : both) {
      EXPECT_FALSE(process(version, xml)) << version << ' ' << xml;
      EXPECT_EQ(ad_->errorCode(), 0) << version << ' ' << xml;
      EXPECT_NE(ad_->vpaidXml(), nullptr) << version << ' ' << xml;
    }
  }
}

TEST_F(VersionProcessorsTest, AWrapperWithoutALinearHasNoClickTracking) {
  process(3, wrapperOf("<Creatives><Creative/></Creatives>"));
  EXPECT_EQ(trackerNames(), Names{"Impression"});
  process(3, wrapperOf("<Creatives><Creative><Linear/></Creative></Creatives>"));
  EXPECT_EQ(trackerNames(), (Names{"Impression", "ClickTracking"}));
}

TEST_F(VersionProcessorsTest, ARecordMayReadAnyNumberOfWrappers) {
  const auto document = parseDocument(wrapperOf(""));
  for (int i = 0; i < 100'000; ++i) {
    EXPECT_FALSE(ad_->processVASTVersion2(2, *document));
  }
  ad_.reset();
}

}  // namespace
}  // namespace tamzo::testing
