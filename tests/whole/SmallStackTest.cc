// A thread of an app may have 512 KB of stack, which is what a thread on iOS is given: the whole
// parse gets along with that, however deep a document is nested.

#include <gtest/gtest.h>
#include <pthread.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "bench/HostileDocuments.h"
#include "tamzo/vast/ErrorCodes.h"
#include "tamzo/vast/RecordJson.h"
#include "tests/support/Documents.h"
#include "tests/support/Responses.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

constexpr std::size_t kStackBytes = std::size_t{512} << 10U;
// Enough to reach every bound on depth.
constexpr std::size_t kResponseBytes = 50'000;

void* call(void* work) {
  (*static_cast<const std::function<void()>*>(work))();
  return nullptr;
}

void runOnSmallStack(std::function<void()> work) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStackBytes), 0);
  pthread_t thread{};
  ASSERT_EQ(pthread_create(&thread, &attributes, call, &work), 0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

// Everything that walks through a record's documents.
struct Outcome {
  std::shared_ptr<TamzoVastAd> ad;
  std::string json;
  std::string page;
};

Outcome wholeParse(const std::string& response) {
  Outcome outcome;
  runOnSmallStack([&] {
    outcome.ad = TamzoVastAd::initWithVast(response);
    outcome.json = recordAsJson(*outcome.ad);
    const Text page = outcome.ad->getVideoWAPView();
    outcome.page = page.view();
  });
  return outcome;
}

std::string nested(int depth) { return repeat("<d>", depth) + "deepest" + repeat("</d>", depth); }

class SmallStackTest : public SdkTest {};

TEST_F(SmallStackTest, HostileShapesEndAsTheyDoElsewhere) {
  readUrlsWith([](const Text&) { return std::optional<std::string>(); });
  MacroHooks fixed;
  fixed.now = [] { return std::chrono::system_clock::time_point(); };
  fixed.random = [](std::uint32_t) { return 0U; };
  fillMacrosWith(std::move(fixed));
  for (const auto& shape : bench::hostileShapes()) {
    const std::string response = shape.make(kResponseBytes);
    const auto elsewhere = TamzoVastAd::initWithVast(response);
    const Outcome outcome = wholeParse(response);
    ASSERT_NE(outcome.ad, nullptr) << shape.name;
    EXPECT_EQ(outcome.ad->errorCode(), elsewhere->errorCode()) << shape.name;
    EXPECT_TRUE(outcome.json == recordAsJson(*elsewhere)) << shape.name;
  }
}

TEST_F(SmallStackTest, ElementsAtTheBoundOfDepthAreKeptAndWritten) {
  // VAST, Ad, InLine, Creatives, Creative, Linear, Icons and Icon stand around them.
  const std::string icons = "<Icons><Icon program='p'>" + nested(248) + "</Icon></Icons>";
  const Outcome outcome = wholeParse(inlineAd("4.0", "", kVideo + icons));
  EXPECT_EQ(outcome.ad->errorCode(), kNoError);
  ASSERT_EQ(outcome.ad->extraActions().list()->size(), 1U);
  EXPECT_TRUE(outcome.json.find(nested(248)) != std::string::npos);
  EXPECT_EQ(wholeParse(inlineAd("4.0", "", kVideo + "<Icons>" + nested(251) + "</Icons>"))
                .ad->errorCode(),
            kNotXml);
}

TEST_F(SmallStackTest, JsonAtTheBoundOfDepthIsReadAndWritten) {
  const std::string json = std::string(512, '[') + std::string(512, ']');
  const Outcome outcome =
      wholeParse(inlineAd("4.0", vendorExtension("<ExtraActions>" + json + "</ExtraActions>")));
  EXPECT_TRUE(outcome.ad->extraActions().isList());
  EXPECT_NE(outcome.json.find(std::string(511, '[')), std::string::npos);
}

TEST_F(SmallStackTest, AChainOfDeepDocumentsIsMergedForAJavaScriptUnit) {
  const std::string deep = "<Extensions>" + nested(251) + "</Extensions>";
  const std::string unit =
      "<MediaFiles><MediaFile type='application/javascript' apiFramework='VPAID'>u"
      "</MediaFile></MediaFiles>";
  readUrlsWith([&](const Text&) { return std::optional(inlineAd("4.0", deep, unit)); });
  const Outcome outcome = wholeParse(wrapper("4.0", deep));
  EXPECT_EQ(outcome.ad->errorCode(), kNoError);
  EXPECT_NE(outcome.ad->vastTagURI().view().find(repeat("<d>", 200)), std::string::npos);
  EXPECT_NE(outcome.page.find(repeat("<d>", 200)), std::string::npos);
}

}  // namespace
}  // namespace tamzo::testing
