#include "tools/ChainReplay.h"

#include <gtest/gtest.h>

#include "tamzo/vast/RecordJson.h"
#include "tests/support/Responses.h"
#include "tests/support/SdkFixture.h"
#include "tools/ChainRecorder.h"

namespace tamzo::testing {
namespace {

using namespace command;

HarEntry entryOf(const std::string& url, const std::string& body, int status = 200) {
  HarEntry entry;
  entry.url = url;
  entry.status = status;
  entry.body = body;
  return entry;
}

class ChainReplayTest : public SdkTest {
 protected:
  static std::shared_ptr<TamzoVastAd> replay(const Har& har, const std::string& response) {
    const TamzoHost inner = *TamzoHost::get();
    ChainReplay chain(har);
    return TamzoVastAd::initWithVast(Text(response), chain.hostAround(inner));
  }
};

TEST_F(ChainReplayTest, aSavedRunGivesTheSameRecord) {
  const std::string tag = "https://a.example/2?c=[CACHEBUSTING]&amp;t=[TIMESTAMP]";
  const struct {
    const char* name;
    std::string response;
    std::string body;
  } runs[] = {{"an InLine", wrapper("4.0", "", tag), inlineAd("4.0")},
              {"a loop of Wrappers", wrapper("4.0", "", tag), wrapper("4.0", "", tag)},
              {"a failed fetch", wrapper("4.0", "", tag), ""},
              {"a tag that is not followed",
               wrapper("4.0", vendorExtension("<ImaTracking>1</ImaTracking>"), tag), ""}};
  for (const auto& run : runs) {
    TamzoHost inner;
    inner.readUrl = [&](const Text&) { return std::optional(run.body); };
    ChainRecorder recorder;
    const auto saved = TamzoVastAd::initWithVast(Text(run.response), recorder.hostAround(inner));
    recorder.noteInput(Text(run.response));
    const Har har = readHar(writeHar(recorder.take()));
    EXPECT_EQ(ChainReplay(har).firstResponse(), run.response) << run.name;
    EXPECT_EQ(recordAsJson(*replay(har, run.response)), recordAsJson(*saved)) << run.name;
  }
}

TEST_F(ChainReplayTest, answersAreFoundByUrlThenByMacrosThenByHost) {
  Har har;
  har.entries = {
      entryOf("https://a.example/other", inlineAd("4.0", "<Impression>host</Impression>")),
      entryOf("https://a.example/2?c=77&x=1", inlineAd("4.0", "<Impression>macro</Impression>")),
      entryOf("https://a.example/2", inlineAd("4.0", "<Impression>exact</Impression>"))};
  const auto impression = [&](const std::string& tag) {
    const auto ad = replay(har, wrapper("4.0", "", tag));
    const auto list = ad->trackers()->find("Impression");
    return list == nullptr || list->empty() ? std::to_string(ad->errorCode())
                                            : std::string(list->front()->url().view());
  };
  EXPECT_EQ(impression("https://a.example/2"), "exact");
  EXPECT_EQ(impression("https://a.example/2?c=[CACHEBUSTING]&amp;x=1"), "macro");
  EXPECT_EQ(impression("https://a.example/9"), "host");
  EXPECT_EQ(impression("https://b.example/9"), "301");
  const auto ad = replay(har, wrapper("4.0", "", "https://a.example/2?c=[CACHEBUSTING]&amp;x=1"));
  EXPECT_EQ(ad->vastTagURI().view(), "https://a.example/2?c=77&x=1");
}

TEST_F(ChainReplayTest, aUrlThatStandsThereManyTimesAnswersInOrder) {
  Har har;
  har.entries = {entryOf("https://a.example/2", wrapper("4.0", "", "https://a.example/2")),
                 entryOf("https://a.example/2", inlineAd("4.0"))};
  EXPECT_EQ(replay(har, wrapper("4.0", "", "https://a.example/2"))->errorCode(), 0);
}

TEST_F(ChainReplayTest, redirectsLeadThroughTheirEntries) {
  Har har;
  har.entries = {entryOf("https://a.example/2", "", 302), entryOf("https://b.example/3", "", 307),
                 entryOf("https://b.example/x/4", inlineAd("4.0"))};
  har.entries[0].redirectUrl = "//b.example/3";
  har.entries[1].redirectUrl = "/x/4";
  const std::string response = wrapper("4.0", "", "https://a.example/2");
  EXPECT_EQ(replay(har, response)->errorCode(), 0);
  har.entries[1].redirectUrl = "https://b.example/3";
  EXPECT_EQ(replay(har, response)->errorCode(), 301);
}

TEST_F(ChainReplayTest, theFirstVastIsTheResponse) {
  Har har;
  har.entries = {entryOf("https://a.example/page", "<html/>"),
                 entryOf("https://a.example/x", "<VASTX/>"),
                 entryOf("https://a.example/v",
                         "\xEF\xBB\xBF \n<?xml version='1.0'?><!-- a --><VAST version='4.0'/>")};
  EXPECT_EQ(ChainReplay(har).firstResponse(), "https://a.example/v");
  har.entries.resize(2);
  EXPECT_EQ(ChainReplay(har).firstResponse(), std::nullopt);
}

}  // namespace
}  // namespace tamzo::testing
