// The host: of the process, of one parse, and which of the two holds where.

#include "tamzo/sdk/TamzoHost.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tamzo/sdk/TamzoAssetsManager.h"
#include "tamzo/sdk/TamzoState.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

const char* const kWrapper =
    "<VAST version='4.0'><Ad><Wrapper><VASTAdTagURI>http://ads.example/next</VASTAdTagURI>"
    "</Wrapper></Ad></VAST>";

std::string adOfCategory(const std::string& category) {
  return "<VAST version='4.0'><Ad><InLine><Category>" + category +
         "</Category></InLine></Ad></VAST>";
}

TamzoHost hostThatReads(const std::string& body) {
  TamzoHost host;
  host.readUrl = [body](const Text&) { return std::optional(body); };
  return host;
}

class Host : public SdkTest {};

TEST_F(Host, IsReadBackAsItWasSet) {
  TamzoHost host;
  host.fetchLimits.maxBodyBytes = 7;
  host.sessionId = [] { return Text("42"); };
  TamzoHost::set(host);
  EXPECT_EQ(TamzoHost::get()->fetchLimits.maxBodyBytes, 7U);
  EXPECT_EQ(TamzoHost::get()->sessionId(), "42");
  EXPECT_FALSE(TamzoHost::get()->readUrl) << "what was not set keeps its default";

  TamzoHost::set({});
  EXPECT_FALSE(TamzoHost::get()->sessionId);
  EXPECT_EQ(TamzoHost::get()->fetchLimits.maxBodyBytes, TamzoUrlReader::Limits().maxBodyBytes);
}

TEST_F(Host, OfAParseTakesThePlaceOfThatOfTheProcessAsAWhole) {
  blockCategories("IAB1");
  const TamzoHost own = hostThatReads(adOfCategory("IAB1"));
  EXPECT_EQ(TamzoVastAd::initWithVast(kWrapper, own)->errorCode(), kNoUsableLinear)
      << "nothing is blocked: the host of the parse does not say so";

  TamzoHost blocking = own;
  blocking.blockedAdCategories = [] { return Text("IAB1"); };
  EXPECT_EQ(TamzoVastAd::initWithVast(kWrapper, blocking)->errorCode(), kCategoryBlocked);
}

TEST_F(Host, OfAParseEndsWithIt) {
  TamzoHost own;
  own.sessionId = [] { return Text("own"); };
  own.blockedAdCategories = [] { return Text("IAB1"); };
  TamzoVastAd::initWithVast(adOfCategory("IAB1"), own);
  EXPECT_EQ(TamzoState::getSessionId(), "");
  EXPECT_TRUE(TamzoState::getBlockedAdCategories().isNil());
}

TEST_F(Host, OfAParseIsThatOfAllThatItCalls) {
  std::vector<std::string> lines;
  std::string asked;
  TamzoHost own;
  own.readUrl = [&](const Text& url) {
    asked = url.view();
    return std::optional(adOfCategory("IAB1"));
  };
  own.writeLog = [&](std::string_view line) { lines.emplace_back(line); };
  own.replaceMacros = [](const Text& text, const MacroValues&) {
    return Text(std::string(text.view()) + "?filled");
  };
  own.blockedAdCategories = [] { return Text("IAB1"); };
  isTamzoDebugEnabled = true;
  writeLogTo([](std::string_view line) { FAIL() << "the log of the process got: " << line; });
  const auto ad = TamzoVastAd::initWithVast(kWrapper, own);
  EXPECT_EQ(ad->errorCode(), kCategoryBlocked);
  EXPECT_EQ(asked, "http://ads.example/next?filled");
  EXPECT_FALSE(lines.empty());
}

TEST_F(Host, OfAPageIsAskedForTemplateAndSession) {
  const auto ad =
      TamzoVastAd::initWithVast("http://ads.example/[TAMZO_SESSION_ID]", hostThatReads("no XML"));
  TamzoHost own;
  own.vpaidWrapperTemplate = [] { return Text("own {{VAST_TAG}}"); };
  own.sessionId = [] { return Text("42"); };
  EXPECT_EQ(ad->getVideoWAPView(own), "own http://ads.example/42");
  useTemplateFrom([] { return Text("process {{VAST_TAG}}"); });
  EXPECT_EQ(ad->getVideoWAPView(), "process http://ads.example/");
}

TEST_F(Host, OfASecondParseOnARecordIsThatWhichItIsGiven) {
  TamzoVastAd ad;
  ad.parseVast("http://ads.example/", hostThatReads(adOfCategory("IAB1")));
  EXPECT_EQ(ad.errorCode(), kNoUsableLinear);
  readUrlsWith([](const Text&) { return std::optional<std::string>(); });
  ad.parseVast("http://ads.example/");
  EXPECT_EQ(ad.errorCode(), kEmptyContent);
}

// A host's reader may itself parse an ad. That parse has the host that it is given, or that of the
// process, and the outer one goes on with its own.
TEST_F(Host, OfANestedParseLeavesThatOfTheOuterOneAlone) {
  readUrlsWith([](const Text&) { return std::optional<std::string>("no XML"); });
  std::int32_t plain = -1;
  std::int32_t given = -1;
  TamzoHost outer;
  outer.blockedAdCategories = [] { return Text("IAB1"); };
  outer.readUrl = [&](const Text&) {
    plain = TamzoVastAd::initWithVast(kWrapper)->errorCode();
    given = TamzoVastAd::initWithVast(kWrapper, hostThatReads(""))->errorCode();
    return std::optional(adOfCategory("IAB1"));
  };
  EXPECT_EQ(TamzoVastAd::initWithVast(kWrapper, outer)->errorCode(), kCategoryBlocked);
  EXPECT_EQ(plain, kNotXml);
  EXPECT_EQ(given, kEmptyContent);
}

TEST_F(Host, OfTheProcessMayChangeDuringAParseWhichGoesOnWithItsOwn) {
  blockCategories("IAB1");
  readUrlsWith([](const Text&) {
    TamzoHost::set({});
    return std::optional(adOfCategory("IAB1"));
  });
  EXPECT_EQ(TamzoVastAd::initWithVast(kWrapper)->errorCode(), kCategoryBlocked);
  EXPECT_EQ(TamzoVastAd::initWithVast(adOfCategory("IAB1"))->errorCode(), kNoUsableLinear);
}

struct HostsOwn {};

TEST_F(Host, IsGoneWhenAnExceptionOfItsOwnPassesThrough) {
  TamzoHost own;
  own.sessionId = [] { return Text("own"); };
  own.readUrl = [](const Text&) -> std::optional<std::string> { throw HostsOwn(); };
  EXPECT_THROW(TamzoVastAd::initWithVast(kWrapper, own), HostsOwn);
  EXPECT_EQ(TamzoState::getSessionId(), "");
}

TEST_F(Host, ThatFailsToTakeALogLineChangesNoErrorCode) {
  TamzoHost own;
  own.writeLog = [](std::string_view) { throw std::runtime_error("the disk is full"); };
  isTamzoDebugEnabled = true;
  EXPECT_EQ(TamzoVastAd::initWithVast("", own)->errorCode(), kException);
  EXPECT_EQ(TamzoVastAd::initWithVast("<VAST version='4.0'/>", own)->errorCode(), kException);
}

TEST_F(Host, OfOneThreadIsNoneOfAnothers) {
  TamzoHost own;
  Text seenByAnother;
  own.readUrl = [&](const Text&) {
    std::thread([&] { seenByAnother = TamzoState::getSessionId(); }).join();
    return std::optional<std::string>();
  };
  own.sessionId = [] { return Text("own"); };
  TamzoVastAd::initWithVast(kWrapper, own);
  EXPECT_EQ(seenByAnother, "");
}

}  // namespace
}  // namespace tamzo::testing
