// The markup that Moat is given.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/Responses.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using MoatTest = SdkTest;

constexpr TrackerRow kMoat[] = {
    {"two verifications, back to back",
     "<E><AdVerifications><Verification><ViewableImpression id=\"1\"><![CDATA[u&v]]>"
     "</ViewableImpression></Verification>\n<Verification><ViewableImpression>w &amp; x"
     "</ViewableImpression></Verification></AdVerifications></E>",
     "<ViewableImpression id=\"1\"><![CDATA[u&v]]></ViewableImpression>"
     "<ViewableImpression>w &amp; x</ViewableImpression>"},
    {"an empty element is markup too",
     "<E><AdVerifications><Verification><ViewableImpression/></Verification></AdVerifications></E>",
     "<ViewableImpression/>"},
    {"no ViewableImpression", "<E><AdVerifications><Verification/></AdVerifications></E>", ""},
    {"not inside a Verification",
     "<E><AdVerifications><ViewableImpression>u</ViewableImpression></AdVerifications></E>", ""},
    {"several blocks of one extension",
     "<E><AdVerifications><Verification><ViewableImpression>1</ViewableImpression></Verification>"
     "</AdVerifications><AdVerifications/><AdVerifications><Verification>"
     "<ViewableImpression>2</ViewableImpression></Verification></AdVerifications></E>",
     "<ViewableImpression>1</ViewableImpression><ViewableImpression>2</ViewableImpression>"},
};

TEST_F(MoatTest, GetsTheMarkupOfViewableImpressions) {
  for (const TrackerRow& row : kMoat) {
    const auto ad = freshRecord();
    ad->setMoatVastIds(Text());
    ad->updateMoatAdVerification(parseDocument(row.xml)->nodesForXPath("/E/AdVerifications"));
    EXPECT_EQ(ad->moatViewImpressionStr().view(), row.expected) << row.name;
    if (*row.expected == '\0') {
      EXPECT_TRUE(ad->moatVastIds().isNil()) << row.name << ": keeps its value";
    } else {
      EXPECT_TRUE(ad->moatVastIds().isSameObject(ad->moatViewImpressionStr().asText())) << row.name;
    }
  }
}

TEST_F(MoatTest, IdsSeeWhatIsAppendedLater) {
  const auto ad = freshRecord();
  const auto blocks = parseDocument(kMoat[1].xml)->nodesForXPath("/E/AdVerifications");
  ad->updateMoatAdVerification(blocks);
  const Text ids = ad->moatVastIds();
  ad->updateMoatAdVerification(blocks);
  EXPECT_EQ(ids.view(), "<ViewableImpression/><ViewableImpression/>");
}

TEST_F(MoatTest, LogsTheWholeTextAfterEachBlockThatAddsToIt) {
  const auto ad = freshRecord();
  collectLog();
  ad->updateMoatAdVerification(parseDocument(kMoat[4].xml)->nodesForXPath("/E/AdVerifications"));
  const std::string prefix = "[TAMZO-LOG][v8.0.0 p0] ";
  EXPECT_EQ(log(),
            (std::vector<std::string>{prefix + "<ViewableImpression>1</ViewableImpression>",
                                      prefix + "<ViewableImpression>1</ViewableImpression>"
                                               "<ViewableImpression>2</ViewableImpression>"}));
}

TEST_F(MoatTest, StopsLoggingATextThatHasGrownLong) {
  std::string blocks;
  for (int i = 0; i < 10'000; ++i) {
    blocks +=
        "<AdVerifications><Verification><ViewableImpression/></Verification></AdVerifications>";
  }
  const auto ad = freshRecord();
  collectLog();
  ad->updateMoatAdVerification(
      parseDocument("<E>" + blocks + "</E>")->nodesForXPath("/E/AdVerifications"));
  EXPECT_EQ(ad->moatVastIds().view().size(), 10'000 * std::string("<ViewableImpression/>").size());
  std::size_t logged = 0;
  for (const std::string& line : log()) {
    logged += line.size();
  }
  EXPECT_GT(logged, 0U);
  EXPECT_LT(logged, 10'000'000U);
}

TEST_F(MoatTest, RunsForEveryVersionAndEveryExtension) {
  const std::string extensions =
      "<Extensions><Extension><AdVerifications><Verification><ViewableImpression>1"
      "</ViewableImpression></Verification></AdVerifications></Extension><Extension>"
      "<AdVerifications><Verification><ViewableImpression>2</ViewableImpression></Verification>"
      "</AdVerifications></Extension></Extensions>";
  for (const char* version : {"2.0", "3.0", "4.0"}) {
    const auto ad = TamzoVastAd::initWithVast(inlineAd(version, extensions));
    EXPECT_EQ(ad->moatVastIds().view(),
              "<ViewableImpression>1</ViewableImpression><ViewableImpression>2"
              "</ViewableImpression>")
        << version;
  }
}

TEST_F(MoatTest, NothingHappensWithoutNodes) {
  const auto ad = freshRecord();
  const std::string before = recordAsJson(*ad);
  collectLog();
  for (const NodeList& nodes : {NodeList(), NodeList::makeEmpty()}) {
    ad->updateMoatAdVerification(nodes);
    EXPECT_EQ(recordAsJson(*ad), before);
    EXPECT_TRUE(log().empty());
  }
}

}  // namespace
}  // namespace tamzo::testing
