// Several threads at once; meant for the thread sanitizer, and worth running without it.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <thread>

#include "tamzo/sdk/TamzoWebSettings.h"
#include "tamzo/vast/RecordJson.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using ThreadsTest = SdkTest;

constexpr int kParses = 60;

// Something for every reader that keeps texts or elements, and for every piece of class-level
// state.
std::string inLineAd(int number) {
  const std::string n = std::to_string(number);
  return "<VAST version='4.0'><Ad id='ad" + n + R"('><InLine>
    <Impression>https://t.example/i</Impression>
    <ViewableImpression><Viewable>https://t.example/v</Viewable></ViewableImpression>
    <Category>IAB)" +
         n + R"(</Category>
    <Extensions><Extension>
      <Tamzo><ExtraActions>[{"n":)" +
         n + R"(}]</ExtraActions><TrackId>)" + n + R"(</TrackId>
        <Cards><Card>card )" +
         n + R"(</Card></Cards>
        <AdditionalWebSettings><canZoom>1</canZoom></AdditionalWebSettings>
        <Video360><Hotspots><Hotspot id=")" +
         n + R"("/><Hotspot/></Hotspots></Video360></Tamzo>
      <AdVerifications><Verification vendor="v"><ViewableImpression>m</ViewableImpression>
      </Verification></AdVerifications></Extension></Extensions>
    <Creatives><Creative><Linear skipoffset="00:00:05"><Duration>00:00:30</Duration>
      <Icons><Icon program="P"><IconClicks><IconClickThrough>go )" +
         n + R"(</IconClickThrough>
      </IconClicks></Icon></Icons>
      <TrackingEvents><Tracking event="start">https://t.example/s</Tracking></TrackingEvents>
      <MediaFiles><MediaFile type="video/mp4">https://c.example/a.mp4</MediaFile></MediaFiles>
    </Linear></Creative>
    <Creative><CompanionAds><Companion id="c" width="1" height="1"/></CompanionAds></Creative>
    </Creatives></InLine></Ad></VAST>)";
}

const std::string kWrapper =
    "<VAST version='4.0'><Ad id='w'><Wrapper><VASTAdTagURI>http://t.example/?t=[TIMESTAMP]&amp;"
    "c=[CACHEBUSTING]&amp;b=[BLOCKEDADCATEGORIES]</VASTAdTagURI></Wrapper></Ad></VAST>";

void runAll(const std::vector<std::function<void()>>& bodies) {
  std::vector<std::thread> threads;
  threads.reserve(bodies.size());
  for (const auto& body : bodies) {
    threads.emplace_back(body);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST_F(ThreadsTest, RecordsAreFilledOnSeveralThreadsAtOnce) {
  std::array<std::string, 4> expected;
  for (int i = 0; i < 4; ++i) {
    expected[static_cast<std::size_t>(i)] = recordAsJson(*TamzoVastAd::initWithVast(inLineAd(i)));
  }
  std::atomic<int> differing{0};
  std::vector<std::function<void()>> bodies;
  for (int i = 0; i < 4; ++i) {
    bodies.emplace_back([&, i] {
      for (int parse = 0; parse < kParses; ++parse) {
        const auto ad = TamzoVastAd::initWithVast(inLineAd(i));
        differing += recordAsJson(*ad) == expected[static_cast<std::size_t>(i)] ? 0 : 1;
      }
    });
  }
  runAll(bodies);
  EXPECT_EQ(differing, 0);
}

TEST_F(ThreadsTest, EverythingOfTheHostMayChangeWhileAdsAreParsed) {
  readUrlsWith([](const Text&) { return inLineAd(1); });
  std::atomic<int> running{3};
  std::atomic<int> lines{0};
  std::atomic<int> unexpected{0};
  std::vector<std::function<void()>> bodies;
  for (int i = 0; i < 3; ++i) {
    bodies.emplace_back([&] {
      for (int parse = 0; parse < kParses; ++parse) {
        const auto ad = TamzoVastAd::initWithVast(kWrapper);
        // Blocked or not, depending on the moment; nothing else can happen.
        unexpected += ad->errorCode() == 0 || ad->errorCode() == 205 ? 0 : 1;
        unexpected += ad->getVideoWAPView().view().empty() ? 1 : 0;
      }
      --running;
    });
  }
  bodies.emplace_back([&] {
    for (int round = 0; running > 0; ++round) {
      isTamzoDebugEnabled = round % 3 != 0;
      writeLogTo([&lines](std::string_view) { ++lines; });
      blockCategories(round % 2 == 0 ? Text("IAB1,IAB2") : Text());
      limitFetches({});
      readUrlsWith([](const Text&) { return inLineAd(1); });
      std::this_thread::yield();
    }
  });
  bodies.emplace_back([&] {
    for (std::uint32_t round = 0; running > 0; ++round) {
      MacroHooks hooks;
      if (round % 2 == 0) {
        hooks.random = [round](std::uint32_t bound) { return round % bound; };
        hooks.now = [] { return std::chrono::system_clock::time_point(); };
      }
      fillMacrosWith(std::move(hooks));
      useTemplateFrom([] { return Text("{{VAST_TAG}}"); });
      TamzoState::setTamzoWebSettings(TamzoWebSettings::init());
      unexpected += TamzoState::getTamzoWebSettings() == nullptr ? 1 : 0;
      std::this_thread::yield();
    }
  });
  runAll(bodies);
  EXPECT_EQ(unexpected, 0);
}

TEST_F(ThreadsTest, AFilledRecordIsReadFromSeveralThreads) {
  const auto ad = TamzoVastAd::initWithVast(inLineAd(7));
  const std::string expected = recordAsJson(*ad);
  std::atomic<int> differing{0};
  std::vector<std::function<void()>> bodies(4, [&] {
    for (int i = 0; i < kParses; ++i) {
      differing += recordAsJson(*ad) == expected ? 0 : 1;
      const auto companion = ad->getMostSuitableCompanion();
      differing += companion->companions().front().id() == "c" ? 0 : 1;
      const auto& icon = std::get<DDXMLElement>(ad->extraActions().list()->back());
      differing += icon.attributeValue("program") == "P" ? 0 : 1;
      differing +=
          icon.firstNodeForXPath("IconClicks/IconClickThrough").stringValue() == "go 7" ? 0 : 1;
      differing += ad->trackers()->find("start")->size() == 1 ? 0 : 1;
    }
  });
  runAll(bodies);
  EXPECT_EQ(differing, 0);
}

TEST_F(ThreadsTest, OneListOfNodesIsAskedBySeveralThreads) {
  std::string xml;
  for (int i = 0; i < 50; ++i) {
    xml += "<n" + std::to_string(i) + "/><a>" + std::to_string(i) + "</a>";
  }
  const NodeList list = rootOf("<r>" + xml + "</r>");
  std::atomic<int> differing{0};
  std::vector<std::function<void()>> bodies(4, [&] {
    for (int i = 0; i < kParses; ++i) {
      differing += list.firstMatch("a").stringValue() == "0" ? 0 : 1;
      differing += list.firstMatch("n49") ? 0 : 1;
      differing += list.nodesUnderFirst("a").size() == 50 ? 0 : 1;
    }
  });
  runAll(bodies);
  EXPECT_EQ(differing, 0);
}

TEST_F(ThreadsTest, WhatARecordGaveOutOutlivesEverythingOnAnotherThread) {
  struct Kept {
    DDXMLElement icon;
    DDXMLElement card;
    std::shared_ptr<TamzoHotspot360Info> hotspot;
    Text url;
    Text moat;
    std::shared_ptr<TamzoCompanionAd> companions;
    std::shared_ptr<TamzoMeasurementProviderModel> provider;
  };
  std::vector<Kept> kept(4);
  std::vector<std::function<void()>> makers;
  for (std::size_t i = 0; i < kept.size(); ++i) {
    makers.emplace_back([&kept, i] {
      const auto ad = TamzoVastAd::initWithVast(inLineAd(static_cast<int>(i)));
      kept[i] = {std::get<DDXMLElement>(ad->extraActions().list()->back()),
                 ad->cards()->front()->node(),
                 ad->hotspotList()->front(),
                 ad->trackers()->find("start")->front()->url(),
                 ad->moatVastIds(),
                 ad->getMostSuitableCompanion(),
                 ad->measurementProviderList()->front()};
    });
  }
  runAll(makers);  // the records are gone, and so are the threads that made them

  std::atomic<int> wrong{0};
  std::vector<std::function<void()>> readers;
  for (std::size_t i = 0; i < kept.size(); ++i) {
    // Each thread reads what another one made, and two threads read the same, then let go of it.
    readers.emplace_back([&wrong, kept, i] {
      for (const std::size_t which : {(i + 1) % kept.size(), (i + 2) % kept.size()}) {
        const Kept& mine = kept[which];
        const std::string n = std::to_string(which);
        wrong += mine.icon.firstNodeForXPath("IconClicks/IconClickThrough").stringValue() ==
                         Text("go " + n)
                     ? 0
                     : 1;
        wrong += mine.card.XMLString() == Text("<Card>card " + n + "</Card>") ? 0 : 1;
        wrong += mine.hotspot->node().attributeValue("id") == Text(n) ? 0 : 1;
        wrong += mine.url == "https://t.example/s" ? 0 : 1;
        wrong += mine.moat == "<ViewableImpression>m</ViewableImpression>" ? 0 : 1;
        wrong += mine.companions->companions().front().width() == 1 ? 0 : 1;
        wrong += mine.provider->vendor() == "v" ? 0 : 1;
      }
    });
  }
  kept.clear();
  runAll(readers);
  EXPECT_EQ(wrong, 0);
}

TEST_F(ThreadsTest, OneTextIsSharedByManyRecords) {
  const Text response = inLineAd(3);
  std::vector<std::shared_ptr<TamzoVastAd>> ads(4);
  std::vector<std::function<void()>> bodies;
  for (auto& ad : ads) {
    bodies.emplace_back([&ad, response] { ad = TamzoVastAd::initWithVast(response); });
  }
  runAll(bodies);
  for (const auto& ad : ads) {
    EXPECT_EQ(ad->adID(), "ad3");
    EXPECT_EQ(recordAsJson(*ad), recordAsJson(*ads.front()));
    EXPECT_TRUE(ad->vastResponseStr().isSameObject(response)) << "no characters were copied";
  }
}

}  // namespace
}  // namespace tamzo::testing
