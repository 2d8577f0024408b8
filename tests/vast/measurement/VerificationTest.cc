// Verification resources: the viewable impressions of each, and the measurement providers.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/support/Responses.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using VerificationTest = SdkTest;

// "vendor vendor …", in the order of the list.
std::string vendorsOf(const TamzoVastAd& ad) {
  std::string vendors;
  for (const auto& provider : *ad.measurementProviderList()) {
    vendors += vendors.empty() ? "" : " ";
    vendors += provider->vendor().view();
  }
  return vendors;
}

// ---- Viewable impressions of a verification ------------------------------------------------

constexpr TrackerRow kVerificationUrls[] = {
    {"no verifications", "<I/>", "{}"},
    {"one URL",
     "<I><AdVerifications><Verification><ViewableImpression>u</ViewableImpression>"
     "</Verification></AdVerifications></I>",
     R"({"AdVerificationViewable":[{"url":"u","offset":""}]})"},
    {"all Verification elements of all blocks share one list",
     "<I><AdVerifications><Verification><ViewableImpression>1</ViewableImpression>"
     "<ViewableImpression>2</ViewableImpression></Verification><Verification/></AdVerifications>"
     "<AdVerifications><Verification><ViewableImpression>3</ViewableImpression></Verification>"
     "</AdVerifications></I>",
     R"({"AdVerificationViewable":[{"url":"1","offset":""},{"url":"2","offset":""},)"
     R"({"url":"3","offset":""}]})"},
    {"nothing but empty ones makes no key",
     "<I><AdVerifications><Verification><ViewableImpression/><ViewableImpression></"
     "ViewableImpression></Verification></AdVerifications></I>",
     "{}"},
    {"a blank is kept, an empty one between is passed over",
     "<I><AdVerifications><Verification><ViewableImpression> </ViewableImpression>"
     "<ViewableImpression/></Verification></AdVerifications></I>",
     R"({"AdVerificationViewable":[{"url":" ","offset":""}]})"},
    {"the text of children belongs to it",
     "<I><AdVerifications><Verification><ViewableImpression><Viewable>a</Viewable>"
     "<NotViewable>b</NotViewable></ViewableImpression></Verification></AdVerifications></I>",
     R"({"AdVerificationViewable":[{"url":"ab","offset":""}]})"},
    {"scripts leave no trace",
     "<I><AdVerifications><Verification><JavaScriptResource>https://s.example/</"
     "JavaScriptResource></Verification></AdVerifications></I>",
     "{}"},
    {"those in extensions are not the ad's own",
     "<I><Extensions><Extension><AdVerifications><Verification><ViewableImpression>u</"
     "ViewableImpression></Verification></AdVerifications></Extension></Extensions></I>",
     "{}"},
};

TEST_F(VerificationTest, UrlsBecomeOneList) {
  for (const TrackerRow& row : kVerificationUrls) {
    const auto ad = freshRecord();
    ad->updateAdVerification(rootOf(row.xml));
    EXPECT_EQ(trackersAsJson(*ad), row.expected) << row.name;
    EXPECT_TRUE(ad->measurementProviderList()->empty()) << row.name;
  }
}

TEST_F(VerificationTest, UrlsReplaceEarlierOnes) {
  const auto ad = freshRecord();
  ad->updateAdVerification(rootOf(kVerificationUrls[2].xml));
  ad->updateAdVerification(rootOf(kVerificationUrls[1].xml));
  EXPECT_EQ(trackersAsJson(*ad), kVerificationUrls[1].expected);
  ad->updateAdVerification(rootOf(kVerificationUrls[3].xml));
  EXPECT_EQ(trackersAsJson(*ad), kVerificationUrls[1].expected) << "nothing collected";
}

// ---- Providers -----------------------------------------------------------------------------

TEST_F(VerificationTest, ProvidersComeFromTheFirstBlockOfThePlaceThatTheVersionNames) {
  // "own" stands in the ad's own place, the others in extensions.
  const char* both =
      "<I><AdVerifications><Verification vendor='own'/></AdVerifications>"
      "<AdVerifications><Verification vendor='own2'/></AdVerifications>"
      "<Extensions><Extension/><Extension><AdVerifications><Verification vendor='a'/>"
      "<Verification vendor='b'/></AdVerifications>"
      "<AdVerifications><Verification vendor='c'/></AdVerifications></Extension>"
      "<Extension><AdVerifications><Verification vendor='d'/></AdVerifications></Extension>"
      "</Extensions></I>";
  const char* emptyFirst =
      "<I><Extensions><Extension><AdVerifications/></Extension><Extension><AdVerifications>"
      "<Verification vendor='d'/></AdVerifications></Extension></Extensions></I>";
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const struct {
    const char* xml;
    float version;
    const char* vendors;
  } rows[] = {
      {both, 2.0F, "a b"},    {both, 3.0F, "a b"}, {both, 4.0F, "a b"}, {both, 4.0999F, "a b"},
      {both, 4.1F, "own"},    {both, 4.2F, "own"}, {both, nan, "own"},  {emptyFirst, 3.0F, ""},
      {emptyFirst, 4.1F, ""}, {"<I/>", 2.0F, ""},  {"<I/>", 4.1F, ""},
  };
  for (const auto& row : rows) {
    const auto ad = freshRecord();
    ad->updateOMVerificationResources(rootOf(row.xml), row.version);
    EXPECT_EQ(vendorsOf(*ad), row.vendors) << row.version << " " << row.xml;
  }
}

TEST_F(VerificationTest, EveryVersionCollectsProvidersAlongTheChain) {
  const auto extension = [](const std::string& vendor) {
    return "<Extensions><Extension><AdVerifications><Verification vendor='" + vendor +
           "'/></AdVerifications></Extension></Extensions>"
           "<AdVerifications><Verification vendor='own'><ViewableImpression>u</ViewableImpression>"
           "</Verification></AdVerifications>";
  };
  for (const char* version : {"2.0", "3.0", "4.0", "4.2"}) {
    answerEveryUrlWith(inlineAd(version, extension("inline")));
    const auto ad = TamzoVastAd::initWithVast(wrapper(version, extension("wrapper")));
    EXPECT_EQ(vendorsOf(*ad), "wrapper inline") << version;
    const TrackerList urls = ad->trackers()->find("AdVerificationViewable");
    EXPECT_EQ(urls != nullptr, version[0] == '4') << version;
    if (urls != nullptr) {
      EXPECT_EQ(urls->size(), 1U) << "the InLine's only";
    }
  }
}

TEST_F(VerificationTest, NothingHappensWithoutNodes) {
  const auto ad = freshRecord();
  const std::string before = recordAsJson(*ad);
  collectLog();
  for (const NodeList& nodes : {NodeList(), NodeList::makeEmpty()}) {
    ad->updateAdVerification(nodes);
    ad->updateOMVerificationResources(nodes, 3.0F);
    ad->updateOMVerificationResources(nodes, 4.1F);
    EXPECT_EQ(recordAsJson(*ad), before);
    EXPECT_TRUE(log().empty());
  }
}

TEST_F(VerificationTest, AListOfProvidersThatAHostTookAwayIsMadeAnew) {
  const auto ad = freshRecord();
  ad->setMeasurementProviderList(nullptr);
  ad->updateOMVerificationResources(
      rootOf("<I><AdVerifications><Verification vendor='v'/></AdVerifications></I>"), 4.1F);
  ASSERT_NE(ad->measurementProviderList(), nullptr);
  ASSERT_EQ(ad->measurementProviderList()->size(), 1U);
  EXPECT_EQ(ad->measurementProviderList()->front()->vendor(), "v");
  ad->setMeasurementProviderList(nullptr);
  ad->updateOMVerificationResources(NodeList(), 4.1F);
  ASSERT_NE(ad->measurementProviderList(), nullptr);
  EXPECT_TRUE(ad->measurementProviderList()->empty());
}

}  // namespace
}  // namespace tamzo::testing
