// The markup that Moat is given.

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
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

TEST_F(MoatTest, LogsAShortTextHoweverLittleItHasGrown) {
  const auto ad = freshRecord();
  collectLog();
  const std::string block =
      "<AdVerifications><Verification><ViewableImpression/></Verification></AdVerifications>";
  ad->updateMoatAdVerification(
      parseDocument("<E>" + block + block + block + block + "</E>")->nodesForXPath("/E/*"));
  std::string grown;
  for (const std::string& line : log()) {
    grown += "<ViewableImpression/>";
    EXPECT_TRUE(line.ends_with("] " + grown)) << line;
  }
  EXPECT_EQ(log().size(), 4U);
}

TEST_F(MoatTest, LogsALongTextWhole) {
  const auto ad = freshRecord();
  collectLog();
  const std::string markup =
      "<ViewableImpression>" + std::string(100'000, 'x') + "</ViewableImpression>";
  const auto blocks = parseDocument("<E><AdVerifications><Verification>" + markup +
                                    "</Verification></AdVerifications></E>")
                          ->nodesForXPath("/E/AdVerifications");
  ad->updateMoatAdVerification(blocks);
  EXPECT_TRUE(logged(markup));
  ad->updateMoatAdVerification(blocks);
  EXPECT_TRUE(logged(markup + markup));
}

class MoatLogTest : public MoatTest {
 protected:
  // Bytes that the log takes while `count` pieces of markup are read; checks what it has last.
  template <typename Read>
  std::size_t bytesLogged(int count, const std::string& piece, Read read) {
    std::string pieces;
    for (int i = 0; i < count; ++i) {
      pieces += piece;
    }
    std::size_t bytes = 0;
    std::string last;
    isTamzoDebugEnabled = true;
    writeLogTo([&](std::string_view line) {
      bytes += line.size();
      last = line;
    });
    const auto ad = freshRecord();
    read(*ad, parseDocument("<E>" + pieces + "</E>"));
    std::string whole;
    for (int i = 0; i < count; ++i) {
      whole += "<ViewableImpression/>";
    }
    EXPECT_EQ(ad->moatVastIds().view(), whole);
    EXPECT_TRUE(last.ends_with("] " + whole)) << "the last line has all of it";
    return bytes;
  }

  // Ever more pieces cost a few times their length, beside what is logged while the text is short.
  template <typename Read>
  void expectLinear(const std::string& piece, Read read) {
    const std::size_t few = bytesLogged(10'000, piece, read);
    const std::size_t many = bytesLogged(80'000, piece, read);
    EXPECT_LT(many - few, 4 * 80'000 * std::string("<ViewableImpression/>").size());
  }
};

const std::string kBlock =
    "<AdVerifications><Verification><ViewableImpression/></Verification></AdVerifications>";

TEST_F(MoatLogTest, IsLinearInTheBlocksOfAnExtension) {
  expectLinear(kBlock, [](TamzoVastAd& ad, const std::shared_ptr<DDXMLDocument>& document) {
    ad.updateMoatAdVerification(document->nodesForXPath("/E/AdVerifications"));
  });
}

TEST_F(MoatLogTest, IsLinearInTheExtensions) {
  const std::string extension = "<Extensions><Extension>" + kBlock + "</Extension></Extensions>";
  expectLinear(extension, [](TamzoVastAd& ad, const std::shared_ptr<DDXMLDocument>& document) {
    ad.updateExtensions(NodeList::of(document->rootElement()));
  });
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
  MutableText markup = ad->moatViewImpressionStr();
  markup.appendString("<ViewableImpression/>");
  ad->updateMoatAdVerification(NodeList::makeEmpty());
  EXPECT_EQ(ad->moatVastIds(), "") << "what was there before is no reason to write it";
}

}  // namespace
}  // namespace tamzo::testing
