// Viewability, verification, Moat and the vendor's own tracking events.

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "tamzo/vast/RecordJson.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using nlohmann::ordered_json;

using MeasurementTest = SdkTest;

std::shared_ptr<TamzoVastAd> freshRecord() { return TamzoVastAd::initWithVast(""); }

std::string trackersOfRecord(const TamzoVastAd& ad) {
  return ordered_json::parse(recordAsJson(ad)).at("trackers").dump();
}

// "vendor vendor …", in the order of the list.
std::string vendorsOf(const TamzoVastAd& ad) {
  std::string vendors;
  for (const auto& provider : *ad.measurementProviderList()) {
    vendors += vendors.empty() ? "" : " ";
    vendors += provider->vendor().view();
  }
  return vendors;
}

std::string inLineAd(const std::string& version, const std::string& content) {
  return "<VAST version=\"" + version + "\"><Ad id=\"a\"><InLine>" + content +
         R"(<Creatives><Creative><Linear>
              <TrackingEvents><Tracking event="start">https://t.example/own</Tracking></TrackingEvents>
              <MediaFiles><MediaFile type="video/mp4">https://cdn.example/a.mp4</MediaFile></MediaFiles>
            </Linear></Creative></Creatives></InLine></Ad></VAST>)";
}

std::string wrapperAd(const std::string& version, const std::string& content) {
  return "<VAST version=\"" + version +
         "\"><Ad><Wrapper><VASTAdTagURI>http://next.example/</VASTAdTagURI>" + content +
         "</Wrapper></Ad></VAST>";
}

void answerEveryUrlWith(const std::string& body) {
  readUrlsWith([body](const Text&) { return body; });
}

struct Row {
  const char* name;
  const char* xml;
  const char* expected;
};

// ---- Viewable impressions ------------------------------------------------------------------

constexpr Row kViewable[] = {
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

TEST_F(MeasurementTest, ViewableImpressionsBecomeThreeLists) {
  for (const Row& row : kViewable) {
    const auto ad = freshRecord();
    ad->setErrorCode(0);
    ad->updateViewableImpressions(rootOf(row.xml));
    EXPECT_EQ(trackersOfRecord(*ad), row.expected) << row.name;
    EXPECT_EQ(ad->errorCode(), 0) << row.name;
  }
}

TEST_F(MeasurementTest, ViewableImpressionsReplaceTheListsOnlyWhenTheElementIsThere) {
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

TEST_F(MeasurementTest, ViewableImpressionsLookUnderTheFirstAdOnly) {
  const auto ad = freshRecord();
  const auto document = parseDocument(
      "<A><I/><I><ViewableImpression><Viewable>v</Viewable></ViewableImpression></I></A>");
  ad->updateViewableImpressions(document->nodesForXPath("/A/I"));
  EXPECT_EQ(trackersOfRecord(*ad), "{}");
}

TEST_F(MeasurementTest, OnlyVersion4ReadsViewableImpressionsOfInLineAndWrapper) {
  const std::string element =
      "<ViewableImpression><Viewable>https://v.example/</Viewable></ViewableImpression>";
  for (const char* version : {"2.0", "3.0", "4.0", "4.2"}) {
    const bool isFour = version[0] == '4';
    const auto inLine = TamzoVastAd::initWithVast(inLineAd(version, element));
    EXPECT_EQ(inLine->trackers()->find("Viewable") != nullptr, isFour) << version;
    answerEveryUrlWith(inLineAd(version, ""));
    const auto chain = TamzoVastAd::initWithVast(wrapperAd(version, element));
    EXPECT_EQ(chain->trackers()->find("Viewable") != nullptr, isFour) << version;
    EXPECT_EQ(chain->errorCode(), 0) << version;
  }
}

// ---- Ad verifications ----------------------------------------------------------------------

constexpr Row kVerificationUrls[] = {
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

TEST_F(MeasurementTest, VerificationUrlsBecomeOneList) {
  for (const Row& row : kVerificationUrls) {
    const auto ad = freshRecord();
    ad->updateAdVerification(rootOf(row.xml));
    EXPECT_EQ(trackersOfRecord(*ad), row.expected) << row.name;
    EXPECT_TRUE(ad->measurementProviderList()->empty()) << row.name;
  }
}

TEST_F(MeasurementTest, VerificationUrlsReplaceEarlierOnes) {
  const auto ad = freshRecord();
  ad->updateAdVerification(rootOf(kVerificationUrls[2].xml));
  ad->updateAdVerification(rootOf(kVerificationUrls[1].xml));
  EXPECT_EQ(trackersOfRecord(*ad), kVerificationUrls[1].expected);
  ad->updateAdVerification(rootOf(kVerificationUrls[3].xml));
  EXPECT_EQ(trackersOfRecord(*ad), kVerificationUrls[1].expected) << "nothing collected";
}

TEST_F(MeasurementTest, ProvidersComeFromTheFirstBlockOfThePlaceThatTheVersionNames) {
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

TEST_F(MeasurementTest, EveryVersionCollectsProvidersAlongTheChain) {
  const auto extension = [](const std::string& vendor) {
    return "<Extensions><Extension><AdVerifications><Verification vendor='" + vendor +
           "'/></AdVerifications></Extension></Extensions>"
           "<AdVerifications><Verification vendor='own'><ViewableImpression>u</ViewableImpression>"
           "</Verification></AdVerifications>";
  };
  for (const char* version : {"2.0", "3.0", "4.0", "4.2"}) {
    answerEveryUrlWith(inLineAd(version, extension("inline")));
    const auto ad = TamzoVastAd::initWithVast(wrapperAd(version, extension("wrapper")));
    EXPECT_EQ(vendorsOf(*ad), "wrapper inline") << version;
    const TrackerList urls = ad->trackers()->find("AdVerificationViewable");
    EXPECT_EQ(urls != nullptr, version[0] == '4') << version;
    if (urls != nullptr) {
      EXPECT_EQ(urls->size(), 1U) << "the InLine's only";
    }
  }
}

// ---- Moat ----------------------------------------------------------------------------------

constexpr Row kMoat[] = {
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

TEST_F(MeasurementTest, MoatGetsTheMarkupOfViewableImpressions) {
  for (const Row& row : kMoat) {
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

TEST_F(MeasurementTest, MoatIdsSeeWhatIsAppendedLater) {
  const auto ad = freshRecord();
  const auto blocks = parseDocument(kMoat[1].xml)->nodesForXPath("/E/AdVerifications");
  ad->updateMoatAdVerification(blocks);
  const Text ids = ad->moatVastIds();
  ad->updateMoatAdVerification(blocks);
  EXPECT_EQ(ids.view(), "<ViewableImpression/><ViewableImpression/>");
}

TEST_F(MeasurementTest, MoatLogsTheWholeTextAfterEachBlockThatAddsToIt) {
  const auto ad = freshRecord();
  collectLog();
  ad->updateMoatAdVerification(parseDocument(kMoat[4].xml)->nodesForXPath("/E/AdVerifications"));
  const std::string prefix = "[TAMZO-LOG][v8.0.0 p0] ";
  EXPECT_EQ(log(),
            (std::vector<std::string>{prefix + "<ViewableImpression>1</ViewableImpression>",
                                      prefix + "<ViewableImpression>1</ViewableImpression>"
                                               "<ViewableImpression>2</ViewableImpression>"}));
}

TEST_F(MeasurementTest, MoatStopsLoggingATextThatHasGrownLong) {
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

TEST_F(MeasurementTest, MoatRunsForEveryVersionAndEveryExtension) {
  const std::string extensions =
      "<Extensions><Extension><AdVerifications><Verification><ViewableImpression>1"
      "</ViewableImpression></Verification></AdVerifications></Extension><Extension>"
      "<AdVerifications><Verification><ViewableImpression>2</ViewableImpression></Verification>"
      "</AdVerifications></Extension></Extensions>";
  for (const char* version : {"2.0", "3.0", "4.0"}) {
    const auto ad = TamzoVastAd::initWithVast(inLineAd(version, extensions));
    EXPECT_EQ(ad->moatVastIds().view(),
              "<ViewableImpression>1</ViewableImpression><ViewableImpression>2"
              "</ViewableImpression>")
        << version;
  }
}

// ---- The vendor's own tracking events --------------------------------------------------------

std::string extraEvents(const std::string& tracking) {
  return "<Extensions><Extension><Tamzo><ExtraTrackingEvents>" + tracking +
         "</ExtraTrackingEvents></Tamzo></Extension></Extensions>";
}

TEST_F(MeasurementTest, ExtraEventsJoinTheTrackers) {
  const Row rows[] = {
      {"a new name", "<Tracking event='x'>u</Tracking>", R"({"x":[{"url":"u","offset":""}]})"},
      {"a name without URL gets an empty list", "<Tracking event='x'/>", R"({"x":[]})"},
      {"case tells names apart", "<Tracking event='a'>1</Tracking><Tracking event='A'>2</Tracking>",
       R"({"a":[{"url":"1","offset":""}],"A":[{"url":"2","offset":""}]})"},
      {"names and URLs stay untrimmed", "<Tracking event=' x '> u </Tracking>",
       R"({" x ":[{"url":" u ","offset":""}]})"},
      {"an offset has no effect", "<Tracking event='x' offset='00:00:05'>u</Tracking>",
       R"({"x":[{"url":"u","offset":""}]})"},
      {"an empty name is a name", "<Tracking event=''>u</Tracking>",
       R"({"":[{"url":"u","offset":""}]})"},
  };
  for (const Row& row : rows) {
    const auto ad = freshRecord();
    ad->updateExtraTrackingEvent(rootOf("<I>" + extraEvents(row.xml) + "</I>"));
    EXPECT_EQ(trackersOfRecord(*ad), row.expected) << row.name;
  }
}

TEST_F(MeasurementTest, ExtraEventsFollowTheStandardOnesInVersion4) {
  const std::string extra = extraEvents("<Tracking event='start'>https://t.example/x</Tracking>");
  for (const char* version : {"2.0", "3.0", "4.0"}) {
    const auto ad = TamzoVastAd::initWithVast(inLineAd(version, extra));
    const TrackerList start = ad->trackers()->find("start");
    ASSERT_EQ(start->size(), version[0] == '4' ? 2U : 1U) << version;
    EXPECT_EQ(start->front()->url(), "https://t.example/own") << version;
    EXPECT_EQ(start->back()->url(),
              version[0] == '4' ? "https://t.example/x" : "https://t.example/own")
        << version;
  }
  answerEveryUrlWith(inLineAd("4.0", ""));
  const auto chain = TamzoVastAd::initWithVast(wrapperAd("4.0", extra));
  EXPECT_EQ(chain->trackers()->find("start")->front()->url(), "https://t.example/x");
}

TEST_F(MeasurementTest, AnExtraEventWithoutANameFailsTheAd) {
  const auto ad = TamzoVastAd::initWithVast(
      inLineAd("4.0", extraEvents("<Tracking event='x'>1</Tracking><Tracking>2</Tracking>"
                                  "<Tracking event='y'>3</Tracking>")));
  EXPECT_EQ(ad->errorCode(), 100);
  EXPECT_EQ(ad->trackers()->find("x")->size(), 1U) << "what was read before stays";
  EXPECT_EQ(ad->trackers()->find("y"), nullptr);
  EXPECT_TRUE(ad->mediaFiles()->empty());
}

TEST_F(MeasurementTest, EveryCallForExtraEventsIsLogged) {
  const auto ad = freshRecord();
  collectLog();
  ad->updateExtraTrackingEvent(NodeList());
  ad->updateExtraTrackingEvent(rootOf("<I/>"));
  EXPECT_THROW(ad->updateExtraTrackingEvent(NodeList::makeEmpty()), std::out_of_range);
  EXPECT_EQ(log(), std::vector<std::string>(3, "[TAMZO-LOG][v8.0.0 p0] edc"));
}

TEST_F(MeasurementTest, AHundredThousandNamesAndAHugeOneAreTakenAlike) {
  std::string tracking = "<Tracking event='" + std::string(1 << 20, 'n') + "'>u</Tracking>";
  for (int i = 0; i < 100'000; ++i) {
    tracking += "<Tracking event='e" + std::to_string(i) + "'>u</Tracking>";
  }
  const auto ad = TamzoVastAd::initWithVast(inLineAd("4.0", extraEvents(tracking)));
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_EQ(ad->trackers()->find(std::string(1 << 20, 'n'))->size(), 1U);
  EXPECT_EQ(ad->trackers()->find("e99999")->size(), 1U);
}

TEST_F(MeasurementTest, NothingHappensWithoutNodes) {
  const auto ad = freshRecord();
  const std::string before = recordAsJson(*ad);
  collectLog();
  for (const NodeList& nodes : {NodeList(), NodeList::makeEmpty()}) {
    ad->updateViewableImpressions(nodes);
    ad->updateAdVerification(nodes);
    ad->updateOMVerificationResources(nodes, 3.0F);
    ad->updateOMVerificationResources(nodes, 4.1F);
    ad->updateMoatAdVerification(nodes);
    ad->updateExtraTrackingEvent_REC(nodes);
    EXPECT_EQ(recordAsJson(*ad), before);
    EXPECT_TRUE(log().empty());
  }
}

}  // namespace
}  // namespace tamzo::testing
