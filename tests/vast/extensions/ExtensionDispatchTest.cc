// Which reader gets which child of Extensions/Extension.

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/support/Responses.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using ExtensionDispatchTest = SdkTest;

std::shared_ptr<TamzoVastAd> recordAfter(const std::string& xml) {
  auto ad = TamzoVastAd::initWithVast("");
  ad->updateExtensions(rootOf(xml));
  return ad;
}

std::string vendor(const std::string& trackId) {
  return "<Tamzo><TrackId>" + trackId + "</TrackId></Tamzo>";
}

std::string moat(const std::string& url) {
  return "<AdVerifications><Verification><ViewableImpression>" + url +
         "</ViewableImpression></Verification></AdVerifications>";
}

std::string moatMarkup(const std::string& url) {
  return "<ViewableImpression>" + url + "</ViewableImpression>";
}

TEST_F(ExtensionDispatchTest, ChildrenReachTheirReaders) {
  const struct {
    const char* name;
    std::string xml;
    Text trackId;  // nil when the vendor reader must not have run
    std::string moatMarkup;
  } rows[] = {
      {"no Extensions", "<I/>", {}, ""},
      {"no Extension", "<I><Extensions/></I>", {}, ""},
      {"an empty Extension", "<I><Extensions><Extension/></Extensions></I>", {}, ""},
      {"another vendor's",
       "<I><Extensions><Extension type='x'><Other><TrackId>1</TrackId></Other></Extension>"
       "</Extensions></I>",
       {},
       ""},
      {"the vendor block, whatever the type",
       "<I><Extensions><Extension type='AdVerifications'>" + vendor("1") +
           "</Extension></Extensions></I>",
       "1", ""},
      {"an empty vendor block", "<I><Extensions><Extension><Tamzo/></Extension></Extensions></I>",
       "", ""},
      {"verifications alone",
       "<I><Extensions><Extension>" + moat("u") + "</Extension></Extensions></I>",
       {},
       moatMarkup("u")},
      {"both in one",
       "<I><Extensions><Extension>" + moat("u") + vendor("1") + "</Extension></Extensions></I>",
       "1", moatMarkup("u")},
      {"each extension in turn, the last vendor block wins",
       "<I><Extensions><Extension>" + vendor("1") + moat("a") + "</Extension><Extension/>" +
           "<Extension>" + moat("b") + "</Extension><Extension>" + vendor("2") +
           "</Extension></Extensions></I>",
       "2", moatMarkup("a") + moatMarkup("b")},
      {"a second Extensions element belongs to it",
       "<I><Extensions><Extension>" + vendor("1") + "</Extension></Extensions><Extensions>" +
           "<Extension>" + vendor("2") + "</Extension></Extensions></I>",
       "2", ""},
      {"the first of two vendor blocks in one extension",
       "<I><Extensions><Extension>" + vendor("1") + vendor("2") + "</Extension></Extensions></I>",
       "1", ""},
      {"all verifications of one extension",
       "<I><Extensions><Extension>" + moat("a") + moat("b") + "</Extension></Extensions></I>",
       {},
       moatMarkup("a") + moatMarkup("b")},
      {"verifications inside the vendor block are not the extension's",
       "<I><Extensions><Extension><Tamzo>" + moat("u") + "</Tamzo></Extension></Extensions></I>",
       "", ""},
      {"a vendor block deeper down is none",
       "<I><Extensions><Extension><Other>" + vendor("1") + "</Other></Extension></Extensions></I>",
       {},
       ""},
      {"names are matched by case",
       "<I><Extensions><Extension><tamzo/><TAMZO/><adVerifications/></Extension></Extensions></I>",
       {},
       ""},
      {"CreativeExtensions are something else",
       "<I><CreativeExtensions><CreativeExtension>" + vendor("1") +
           "</CreativeExtension></CreativeExtensions></I>",
       {},
       ""},
  };
  for (const auto& row : rows) {
    const auto ad = recordAfter(row.xml);
    EXPECT_EQ(ad->trackId(), row.trackId) << row.name;
    EXPECT_EQ(ad->moatViewImpressionStr().view(), row.moatMarkup) << row.name;
  }
}

TEST_F(ExtensionDispatchTest, TheVendorReaderRunsBeforeTheVerifications) {
  collectLog();
  const auto ad = TamzoVastAd::initWithVast("");
  const std::size_t before = log().size();
  ad->updateExtensions(
      rootOf("<I><Extensions><Extension>" + moat("u") +
             "<Tamzo><Video360><Hotspots><Hotspot/></Hotspots></Video360></Tamzo></Extension>"
             "</Extensions></I>"));
  const std::vector<std::string> lines = log();
  ASSERT_EQ(lines.size(), before + 2);
  EXPECT_EQ(lines[before], "[TAMZO-LOG][v8.0.0 p0] Hotspot XML parsing error");
  EXPECT_EQ(lines[before + 1], "[TAMZO-LOG][v8.0.0 p0] " + moatMarkup("u"));
}

TEST_F(ExtensionDispatchTest, OnlyTheFirstAdIsSearched) {
  const auto document =
      parseDocument("<A><I><Extensions><Extension/></Extensions></I><I><Extensions><Extension>" +
                    vendor("2") + "</Extension></Extensions></I></A>");
  const auto ad = TamzoVastAd::initWithVast("");
  ad->updateExtensions(document->nodesForXPath("/A/I"));
  EXPECT_TRUE(ad->trackId().isNil());
  EXPECT_THROW(ad->updateExtensions(NodeList::makeEmpty()), std::out_of_range);
}

TEST_F(ExtensionDispatchTest, WrappersAlwaysAndInLineAdsWithALinearAreDispatched) {
  const std::string block = vendorExtension("<TrackId>t</TrackId>");
  for (const char* version : {"2.0", "3.0", "4.0"}) {
    const auto inLine = TamzoVastAd::initWithVast(inlineAd(version, block));
    EXPECT_EQ(inLine->trackId(), "t") << version;
    const auto unplayable = TamzoVastAd::initWithVast(bareInline(version, block));
    EXPECT_EQ(unplayable->errorCode(), 405) << version;
    EXPECT_TRUE(unplayable->trackId().isNil()) << version;
    const auto followed = TamzoVastAd::initWithVast(wrapper(version, block));
    EXPECT_EQ(followed->trackId(), "t") << version;
  }
}

TEST_F(ExtensionDispatchTest, AHundredThousandExtensionsAreVisitedInTurn) {
  std::string extensions;
  for (int i = 0; i < 100'000; ++i) {
    extensions += "<Extension><Tamzo><vc>" + std::to_string(i) + "</vc></Tamzo></Extension>";
  }
  const auto ad = recordAfter("<I><Extensions>" + extensions + "</Extensions></I>");
  EXPECT_EQ(ad->bid(), 99'999.0);
}

}  // namespace
}  // namespace tamzo::testing
