// Who counts whether the ad was seen.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Responses.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using ViewableImpressionsTest = SdkTest;

constexpr TrackerRow kViewable[] = {
    {"no element", "<InLine/>", "{}"},
    {"element without children", "<InLine><ViewableImpression/></InLine>",
     R"({"Viewable":[],"NotViewable":[],"ViewUndetermined":[]})"},
    {"one of each",
     "<InLine><ViewableImpression><ViewUndetermined>u</ViewUndetermined><Viewable>v</Viewable>"
     "<NotViewable>n</NotViewable></ViewableImpression></InLine>",
     R"({"Viewable":[{"url":"v","offset":""}],"NotViewable":[{"url":"n","offset":""}],)"
     R"("ViewUndetermined":[{"url":"u","offset":""}]})"},
    {"empty text adds nothing",
     "<InLine><ViewableImpression><Viewable/><NotViewable></NotViewable>"
     "<ViewUndetermined><![CDATA[]]></ViewUndetermined></ViewableImpression></InLine>",
     R"({"Viewable":[],"NotViewable":[],"ViewUndetermined":[]})"},
    {"blanks and line breaks are kept",
     "<InLine><ViewableImpression><Viewable> </Viewable><NotViewable>\n u\n</NotViewable>"
     "</ViewableImpression></InLine>",
     R"({"Viewable":[{"url":" ","offset":""}],"NotViewable":[{"url":"\n u\n","offset":""}],)"
     R"("ViewUndetermined":[]})"},
    {"CDATA, entities and comments give their text",
     "<InLine><ViewableImpression><Viewable><![CDATA[a&b]]></Viewable>"
     "<Viewable>c&amp;d</Viewable><Viewable>e<!-- no -->f</Viewable></ViewableImpression></InLine>",
     R"({"Viewable":[{"url":"a&b","offset":""},{"url":"c&d","offset":""},)"
     R"({"url":"ef","offset":""}],"NotViewable":[],"ViewUndetermined":[]})"},
    {"several elements share the lists, in document order",
     "<InLine><ViewableImpression><Viewable>1</Viewable></ViewableImpression>"
     "<ViewableImpression><NotViewable>2</NotViewable><Viewable>3</Viewable></ViewableImpression>"
     "</InLine>",
     R"({"Viewable":[{"url":"1","offset":""},{"url":"3","offset":""}],)"
     R"("NotViewable":[{"url":"2","offset":""}],"ViewUndetermined":[]})"},
    {"only children count, and names by case",
     "<InLine><Extra><ViewableImpression><Viewable>v</Viewable></ViewableImpression></Extra>"
     "<viewableImpression><Viewable>v</Viewable></viewableImpression></InLine>",
     "{}"},
    {"a grandchild is no tracker",
     "<InLine><ViewableImpression><More><Viewable>v</Viewable></More></ViewableImpression>"
     "</InLine>",
     R"({"Viewable":[],"NotViewable":[],"ViewUndetermined":[]})"},
};

TEST_F(ViewableImpressionsTest, BecomeThreeLists) {
  for (const TrackerRow& row : kViewable) {
    const auto ad = freshRecord();
    ad->setErrorCode(0);
    ad->updateViewableImpressions(rootOf(row.xml));
    EXPECT_EQ(trackersAsJson(*ad), row.expected) << row.name;
    EXPECT_EQ(ad->errorCode(), 0) << row.name;
  }
}

TEST_F(ViewableImpressionsTest, ReplaceTheListsOnlyWhenTheElementIsThere) {
  const auto ad = freshRecord();
  ad->updateViewableImpressions(
      rootOf("<A><ViewableImpression><Viewable>old</Viewable></ViewableImpression></A>"));
  const TrackerList old = ad->trackers()->find("Viewable");
  ad->updateViewableImpressions(rootOf("<A/>"));
  EXPECT_EQ(ad->trackers()->find("Viewable"), old);
  ad->updateViewableImpressions(rootOf("<A><ViewableImpression/></A>"));
  EXPECT_NE(ad->trackers()->find("Viewable"), old);
  EXPECT_TRUE(ad->trackers()->find("Viewable")->empty());
  EXPECT_EQ(old->size(), 1U) << "who holds the list that was replaced keeps it whole";
  EXPECT_NE(ad->trackers()->find("Viewable"), ad->trackers()->find("NotViewable"));
}

TEST_F(ViewableImpressionsTest, AreLookedForUnderTheFirstAdOnly) {
  const auto ad = freshRecord();
  const auto document = parseDocument(
      "<A><I/><I><ViewableImpression><Viewable>v</Viewable></ViewableImpression></I></A>");
  ad->updateViewableImpressions(document->nodesForXPath("/A/I"));
  EXPECT_EQ(trackersAsJson(*ad), "{}");
}

TEST_F(ViewableImpressionsTest, OnlyVersion4ReadsThemOfInLineAndWrapper) {
  const std::string element =
      "<ViewableImpression><Viewable>https://v.example/</Viewable></ViewableImpression>";
  for (const char* version : {"2.0", "3.0", "4.0", "4.2"}) {
    const bool isFour = version[0] == '4';
    const auto inLine = TamzoVastAd::initWithVast(inlineAd(version, element));
    EXPECT_EQ(inLine->trackers()->find("Viewable") != nullptr, isFour) << version;
    answerEveryUrlWith(inlineAd(version, ""));
    const auto chain = TamzoVastAd::initWithVast(wrapper(version, element));
    EXPECT_EQ(chain->trackers()->find("Viewable") != nullptr, isFour) << version;
    EXPECT_EQ(chain->errorCode(), 0) << version;
  }
}

TEST_F(ViewableImpressionsTest, NothingHappensWithoutNodes) {
  const auto ad = freshRecord();
  const std::string before = recordAsJson(*ad);
  collectLog();
  for (const NodeList& nodes : {NodeList(), NodeList::makeEmpty()}) {
    ad->updateViewableImpressions(nodes);
    EXPECT_EQ(recordAsJson(*ad), before);
    EXPECT_TRUE(log().empty());
  }
}

}  // namespace
}  // namespace tamzo::testing
