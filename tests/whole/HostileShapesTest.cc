// Responses that are built to cost more than their size, at about 1 MB each: how the parse of each
// must end, and that it and the record's JSON end soon.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <future>
#include <iterator>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "base/Ascii.h"
#include "base/Utf8.h"
#include "bench/HostileDocuments.h"
#include "tamzo/net/TamzoUrlReader.h"
#include "tamzo/vast/RecordJson.h"
#include "tests/support/Growth.h"
#include "tests/support/HttpServer.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::bench {

// Found by GoogleTest, which would print the bytes of the shape.
static void PrintTo(const HostileShape& shape, std::ostream* out) { *out << shape.name; }

}  // namespace tamzo::bench

namespace tamzo::testing {
namespace {

using bench::HostileShape;

constexpr std::size_t kBytes = 1'000'000;
// Of processor time: far above what any shape takes, also under a sanitizer, and far below what one
// takes that gets out of hand.
constexpr double kMostSeconds = 20.0;

std::size_t count(std::string_view text, std::string_view piece) {
  std::size_t found = 0;
  for (std::size_t at = text.find(piece); at != std::string_view::npos;
       at = text.find(piece, at + piece.size())) {
    ++found;
  }
  return found;
}

std::size_t eventCount(const TamzoVastAd& ad, std::string_view name) {
  const TrackerList events = ad.trackers()->find(name);
  return events == nullptr ? 0 : events->size();
}

std::string_view firstImpression(const TamzoVastAd& ad) {
  const TrackerList events = ad.trackers()->find("Impression");
  return events == nullptr || events->empty() ? std::string_view() : events->front()->url().view();
}

// What the record of some shapes holds, besides its error code.
using Check = std::function<void(const TamzoVastAd& ad, std::string_view response)>;

const std::map<std::string_view, Check>& checks() {
  static const std::map<std::string_view, Check> all{
      {"attributes: one long",
       [](const TamzoVastAd& ad, std::string_view) {
         const auto& icon = std::get<DDXMLElement>(ad.extraActions().list()->at(0));
         EXPECT_EQ(icon.attributeValue("program").view().size(), kBytes);
       }},
      {"icons: distinct programs",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(ad.extraActions().list()->size(), count(response, "<Icon "));
       }},
      {"icons: one program",
       [](const TamzoVastAd& ad, std::string_view) {
         EXPECT_EQ(ad.extraActions().list()->size(), 1U);
       }},
      {"tracking: distinct events",
       [](const TamzoVastAd& ad, std::string_view response) {
         // Beside them stand Impression and ClickTracking, which every ad has.
         EXPECT_EQ(ad.trackers()->size(), count(response, "<Tracking ") + 2);
         EXPECT_EQ(eventCount(ad, "e0"), 1U);
       }},
      {"tracking: one event",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(eventCount(ad, "e"), count(response, "<Tracking "));
       }},
      {"tracking: the last without an event",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(eventCount(ad, "e"), count(response, "<Tracking "));
       }},
      {"tracking: extra events",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(ad.trackers()->size(), count(response, "<Tracking ") + 2);
       }},
      {"many: Companion",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(ad.getMostSuitableCompanion()->companions().size(),
                   count(response, "<Companion/>"));
       }},
      {"many: Verification",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(ad.measurementProviderList()->size(), count(response, "<Verification/>"));
       }},
      {"many: Impression",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(eventCount(ad, "Impression"), count(response, "<Impression/>"));
       }},
      {"many: MediaFile",
       [](const TamzoVastAd& ad, std::string_view) {
         // Only those of the first MediaFiles with a file that can be played, and of its sisters.
         EXPECT_GT(ad.mediaFiles()->size(), 1U);
       }},
      {"many: Category",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(ad.categoryArray()->size(), count(response, "<Category>"));
       }},
      {"many: Card",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(ad.cards()->size(), count(response, "<Card/>"));
       }},
      {"many: Hotspot",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(ad.hotspotList()->size(), count(response, "<Hotspot "));
       }},
      {"text: CDATA sections",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(firstImpression(ad), std::string(count(response, "<![CDATA["), 'u'));
       }},
      {"text: comments",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(firstImpression(ad), std::string(count(response, "<!--"), 'u'));
       }},
      {"text: CDATA sections and comments",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(firstImpression(ad), std::string(count(response, "<!--"), 'u'));
       }},
      {"text: character references",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(firstImpression(ad), std::string(count(response, "&#65;"), 'A'));
       }},
      {"text: predefined entities",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(firstImpression(ad), std::string(count(response, "&amp;"), '&'));
       }},
      {"json: 512 deep",
       [](const TamzoVastAd& ad, std::string_view) { EXPECT_TRUE(ad.extraActions().isList()); }},
      {"json: 513 deep",
       [](const TamzoVastAd& ad, std::string_view) { EXPECT_TRUE(ad.extraActions().isNil()); }},
      {"json: unbounded depth",
       [](const TamzoVastAd& ad, std::string_view) { EXPECT_TRUE(ad.extraActions().isNil()); }},
      {"json: only opened",
       [](const TamzoVastAd& ad, std::string_view) { EXPECT_TRUE(ad.extraActions().isNil()); }},
      {"json: wide",
       [](const TamzoVastAd& ad, std::string_view response) {
         EXPECT_EQ(ad.extraActions().list()->size(), count(response, ",0") + 1);
       }},
      {"number: fraction of vc",
       [](const TamzoVastAd& ad, std::string_view) { EXPECT_NEAR(ad.bid(), 1.0 / 9.0, 1e-12); }},
      {"number: spaces before vc",
       [](const TamzoVastAd& ad, std::string_view) { EXPECT_EQ(ad.bid(), 1.0); }},
      {"number: ViewabilityAction",
       [](const TamzoVastAd& ad, std::string_view) {
         EXPECT_EQ(ad.viewabilityAction(), 2147483647);
       }},
      {"number: zeros of CoppaEnabled",
       [](const TamzoVastAd& ad, std::string_view) { EXPECT_TRUE(ad.isCoppaEnabled()); }},
  };
  return all;
}

class HostileShapesTest : public SdkTest, public ::testing::WithParamInterface<HostileShape> {};

TEST_P(HostileShapesTest, EndsAsItMustAndSoon) {
  readUrlsWith([](const Text&) { return std::optional<std::string>(); });
  const std::string response = GetParam().make(kBytes);
  const double begin = threadSeconds();
  const auto ad = TamzoVastAd::initWithVast(response);
  ASSERT_NE(ad, nullptr);
  EXPECT_EQ(ad->errorCode(), GetParam().errorCode);
  if (const auto check = checks().find(GetParam().name); check != checks().end()) {
    check->second(*ad, response);
  }
  const std::string json = recordAsJson(*ad);
  EXPECT_EQ(json.front(), '{');
  EXPECT_EQ(json.back(), '}');
  EXPECT_LT(threadSeconds() - begin, kMostSeconds);
}

std::string replaced(std::string text, std::string_view what, std::string_view with) {
  for (std::size_t at = text.find(what); at != std::string::npos;
       at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

// The same ad behind a Wrapper, with a unit that is played in a page: the chain is merged.
class HostileInLineTest : public HostileShapesTest {};

TEST_P(HostileInLineTest, EndsSoonMergedAndInAPageToo) {
  const std::string response = replaced(GetParam().make(kBytes), "type=\"video/mp4\">",
                                        "type=\"application/javascript\" apiFramework=\"VPAID\">");
  readUrlsWith([&response](const Text&) { return std::optional<std::string>(response); });
  const double begin = threadSeconds();
  const auto ad = TamzoVastAd::initWithVast(
      "<VAST version=\"4.0\"><Ad><Wrapper><VASTAdTagURI>https://a.example/</VASTAdTagURI>"
      "<Impression>u</Impression></Wrapper></Ad></VAST>");
  ASSERT_NE(ad, nullptr);
  // A body that is not UTF-8 is none.
  EXPECT_EQ(ad->errorCode(), isUtf8(response) ? GetParam().errorCode : kEmptyContent);
  // What is merged is written out: with every reference and every prefix.
  EXPECT_LE(ad->vastTagURI().view().size(), 16 * response.size());
  const std::size_t page = ad->getVideoWAPView().view().size();
  EXPECT_LE(page, ad->vastTagURI().view().size() + 100'000);
  EXPECT_LT(threadSeconds() - begin, kMostSeconds);
}

std::string testName(const ::testing::TestParamInfo<HostileShape>& info) {
  std::string name;
  for (const char c : info.param.name) {
    if (isAsciiAlphanumeric(c)) {
      name += c;
    } else if (!name.empty() && name.back() != '_') {
      name += '_';
    }
  }
  // Two names may differ in their punctuation only.
  return name + (name.back() == '_' ? "" : "_") + std::to_string(info.index);
}

INSTANTIATE_TEST_SUITE_P(All, HostileShapesTest,
                         ::testing::ValuesIn(bench::hostileShapes().begin(),
                                             bench::hostileShapes().end()),
                         testName);

// What can stand at the end of a chain: an ad that is read, or a text that is no XML.
std::vector<HostileShape> endsOfChains() {
  std::vector<HostileShape> ends;
  const auto shapes = bench::hostileShapes();
  std::copy_if(
      shapes.begin(), shapes.end(), std::back_inserter(ends),
      [](const HostileShape& shape) { return shape.errorCode == 0 || shape.errorCode == 101; });
  return ends;
}

INSTANTIATE_TEST_SUITE_P(All, HostileInLineTest, ::testing::ValuesIn(endsOfChains()), testName);

TEST(HostileShapesTableTest, EveryCheckBelongsToAShape) {
  for (const auto& [name, check] : checks()) {
    const auto shapes = bench::hostileShapes();
    EXPECT_TRUE(
        std::any_of(shapes.begin(), shapes.end(),
                    [&wanted = name](const HostileShape& shape) { return shape.name == wanted; }))
        << name;
  }
}

// ---- What a server can send around the body -------------------------------------------------

class HostileServerTest : public SdkTest {
 protected:
  // The answer is far longer than what stands in buffers between server and client: sent whole, it
  // was also received whole.
  static void expectRefusal(const std::string& answer) {
    TamzoUrlReader::Limits limits;
    limits.totalSeconds = 60.0;
    limitFetches(limits);
    HttpServer server;
    std::promise<bool> wasSentWhole;
    server.on("/tag",
              [&](const Exchange& exchange) { wasSentWhole.set_value(exchange.send(answer)); });
    EXPECT_EQ(TamzoVastAd::initWithVast(server.url("/tag"))->errorCode(), kEmptyContent);
    EXPECT_FALSE(wasSentWhole.get_future().get());
  }
};

TEST_F(HostileServerTest, EndlessHeadersAreAFailedRead) {
  expectRefusal(bench::endlessHttpHeaders(30 * kBytes));
}

TEST_F(HostileServerTest, EndlessTrailersAreAFailedRead) {
  expectRefusal(bench::endlessChunkTrailers(30 * kBytes));
}

}  // namespace
}  // namespace tamzo::testing
