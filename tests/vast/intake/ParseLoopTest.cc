// How a response becomes a record: the loop that follows Wrappers, its counter and its guards.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Responses.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

// A Wrapper that leads to `url`.
std::string wrapperTo(const std::string& url, const std::string& inside = "") {
  return wrapper("3.0", inside, url);
}

// Version 2 ignores skipoffset and CustomClick, 3 reads the first, 4 reads both.
std::string clickableAd(const std::string& version = "3.0", const std::string& inside = "") {
  return bareInline(version, "<Impression>i</Impression>" + inside +
                                 linear("<Duration>00:00:30</Duration><VideoClicks><CustomClick>c"
                                        "</CustomClick></VideoClicks>" +
                                            kVideo,
                                        "skipoffset='00:00:05'"));
}

const std::string kImaTracking = vendorExtension("<ImaTracking>1</ImaTracking>");

class ParseLoopTest : public SdkTest {
 protected:
  ParseLoopTest() {
    readUrlsWith([this](const Text& url) -> std::optional<std::string> {
      asked_.emplace_back(url.view());
      const auto found = web_.find(std::string(url.view()));
      return found == web_.end() ? std::nullopt : std::optional(found->second);
    });
  }

  // Documents 2 to `documents` of a chain; all are Wrappers but the last.
  void serveChain(int documents, const std::string& last) {
    for (int i = 2; i <= documents; ++i) {
      web_["http://ads.example/" + std::to_string(i)] =
          i == documents ? last : wrapperTo("http://ads.example/" + std::to_string(i + 1));
    }
  }

  std::map<std::string, std::string> web_;
  std::vector<std::string> asked_;
};

TEST_F(ParseLoopTest, FailuresHaveTheirCodeAndLogLine) {
  struct Row {
    const char* response;
    int code;
    const char* line;
  };
  const std::vector<Row> rows{
      {"abcd", kNotXml, "XML is not VAST"},
      {"    ", kNotXml, "XML is not VAST"},
      {" http://ads.example/ok", kNotXml, "XML is not VAST"},
      {"HTTP://ads.example/ok", kNotXml, "XML is not VAST"},
      {"Http", kNotXml, "XML is not VAST"},
      {"<VAST", kNotXml, "XML is not VAST"},
      {"<VAST version='3.0'><Ad></VAST>", kNotXml, "XML is not VAST"},
      {"<vast version='3.0'/>", kBadVersion, "VAST version is absent"},
      {"<Root><VAST version='3.0'/></Root>", kBadVersion, "VAST version is absent"},
      {"<VAST/>", kBadVersion, "VAST version is absent"},
      {"<VAST version=''/>", kBadVersion, "VAST version is absent"},
      {"<VAST Version='3.0'/>", kBadVersion, "VAST version is absent"},
      {"<VAST version='1.0'/>", kBadVersion, "VAST version is incompatible"},
      {"<VAST version='5.0'/>", kBadVersion, "VAST version is incompatible"},
      {"<VAST version='-3'/>", kBadVersion, "VAST version is incompatible"},
      {"<VAST version='v3'/>", kBadVersion, "VAST version is incompatible"},
      {"<VAST version=' '/>", kBadVersion, "VAST version is incompatible"},
      {"<VAST version='30'/>", kBadVersion, "VAST version is incompatible"},
      {"<VAST version='3.0'/>", kNoAd, "Ad element is absent!"},
      {"<VAST version='3.0'><Ad id='1'/></VAST>", kNoWrapperOrInLine, "Inline Node Absent"},
      {"http://ads.example/unknown", kEmptyContent, "empty vast string content!"},
      {"http://ads.example/empty", kEmptyContent, "empty vast string content!"},
      {"http://ads.example/latin1", kEmptyContent, "empty vast string content!"},
      {"httpx", kEmptyContent, "empty vast string content!"},
  };
  web_["http://ads.example/ok"] = clickableAd();
  web_["http://ads.example/empty"] = "";
  web_["http://ads.example/latin1"] = "<VAST version='3.0'>\xE4</VAST>";
  collectLog();
  for (const Row& row : rows) {
    const std::size_t before = log().size();
    const auto ad = TamzoVastAd::initWithVast(row.response);
    ASSERT_NE(ad, nullptr) << row.response;
    EXPECT_EQ(ad->errorCode(), row.code) << row.response;
    const auto lines = log();
    ASSERT_GT(lines.size(), before) << row.response;
    EXPECT_EQ(lines.back(), "[TAMZO-LOG][v8.0.0 p0] " + std::string(row.line)) << row.response;
  }
}

TEST_F(ParseLoopTest, FewerThanFourCharactersAreAnException) {
  const std::vector<Text> tooShort{
      Text(), "", "a", "<a>", "abc", "\xC3\xA4\xC3\xB6\xC3\xBC", "a\xF0\x9F\x98\x80"};
  for (const Text& response : tooShort) {
    EXPECT_EQ(TamzoVastAd::initWithVast(response)->errorCode(), kException) << response;
  }
  for (const Text& response : {Text("<a/>"), Text("\xF0\x9F\x98\x80\xF0\x9F\x98\x80")}) {
    EXPECT_NE(TamzoVastAd::initWithVast(response)->errorCode(), kException) << response;
  }
}

TEST_F(ParseLoopTest, AnExceptionIsLoggedWithACallStack) {
  collectLog();
  TamzoVastAd::initWithVast("abc");
  const auto lines = log();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(lines[0].starts_with("[TAMZO-LOG][v8.0.0 p0] ")) << lines[0];
  EXPECT_GT(std::count(lines[0].begin(), lines[0].end(), '\n'), 1) << lines[0];
}

TEST_F(ParseLoopTest, NothingIsLoggedWhileTheSwitchIsOff) {
  collectLog();
  isTamzoDebugEnabled = false;
  web_["http://ads.example/2"] = clickableAd();
  TamzoVastAd::initWithVast(wrapperTo("http://ads.example/2"));
  TamzoVastAd::initWithVast("abc");
  TamzoVastAd::initWithVast("http://ads.example/unknown");
  EXPECT_TRUE(log().empty()) << log().front();
}

TEST_F(ParseLoopTest, TheIntegerAtTheFrontOfTheVersionDecides) {
  struct Row {
    const char* version;
    double skipOffset;
    bool hasCustomClicks;
  };
  const std::vector<Row> rows{
      {"2", 0, false},
      {"2.0", 0, false},
      {"2.9", 0, false},
      {"02", 0, false},
      {"3.0", 5000, false},
      {" 3", 5000, false},
      {"3 ", 5000, false},
      {"+3", 5000, false},
      {"3.0.1 beta", 5000, false},
      {"4.0", 5000, true},
      {"4.1", 5000, true},
      {"4.2", 5000, true},
      {"4.9", 5000, true},
      {"4x", 5000, true},
      {"\xC2\xA0"
       "4",
       5000, true},
  };
  for (const Row& row : rows) {
    const auto ad = TamzoVastAd::initWithVast(clickableAd(row.version));
    EXPECT_EQ(ad->errorCode(), 0) << row.version;
    EXPECT_EQ(ad->vpaidVastVersion(), Text(row.version));
    EXPECT_EQ(ad->skipOffsetMillis(), row.skipOffset) << row.version;
    EXPECT_EQ(ad->trackers()->find("CustomClickTracker") != nullptr, row.hasCustomClicks)
        << row.version;
  }
}

TEST_F(ParseLoopTest, TheVersionIsStoredBeforeItIsChecked) {
  EXPECT_EQ(TamzoVastAd::initWithVast("<VAST version='5.0'/>")->vpaidVastVersion(), Text("5.0"));
  EXPECT_EQ(TamzoVastAd::initWithVast("<VAST version=''/>")->vpaidVastVersion(), Text(""));
  EXPECT_TRUE(TamzoVastAd::initWithVast("<VAST/>")->vpaidVastVersion().isNil());
  EXPECT_TRUE(TamzoVastAd::initWithVast("<Root version='3.0'/>")->vpaidVastVersion().isNil());
  // The last document's, and nil where that has none.
  web_["http://ads.example/2"] = "<VAST/>";
  EXPECT_TRUE(
      TamzoVastAd::initWithVast(wrapperTo("http://ads.example/2"))->vpaidVastVersion().isNil());
}

TEST_F(ParseLoopTest, AnInLineResponseIsReadWithoutAnyFetch) {
  const std::string response = clickableAd();
  const auto ad = TamzoVastAd::initWithVast(response);
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_EQ(ad->adID(), Text("inline"));
  EXPECT_EQ(ad->mediaFiles()->size(), 1U);
  EXPECT_EQ(ad->vastTagURI(), Text(response)) << "the response itself";
  EXPECT_EQ(ad->vastResponseStr(), Text(response));
  EXPECT_TRUE(asked_.empty());
}

TEST_F(ParseLoopTest, AResponseThatIsAUrlIsFetched) {
  web_["https://ads.example/tag"] = clickableAd();
  const auto ad = TamzoVastAd::initWithVast("https://ads.example/tag");
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_EQ(ad->adID(), Text("inline")) << "what it gives counts as the first document";
  EXPECT_EQ(ad->vastResponseStr(), Text("https://ads.example/tag"));
}

TEST_F(ParseLoopTest, AWrapperIsFollowedAndKeepsItsAdId) {
  web_["http://ads.example/2"] = clickableAd();
  const std::string response = wrapperTo("http://ads.example/2", "<Impression>outer</Impression>");
  const auto ad = TamzoVastAd::initWithVast(response);
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_EQ(ad->adID(), Text("wrapper"));
  EXPECT_EQ(ad->vastTagURI(), Text("http://ads.example/2"));
  EXPECT_EQ(ad->vastResponseStr(), Text(response)) << "fetched documents are not kept";
  const TrackerList impressions = ad->trackers()->find("Impression");
  ASSERT_EQ(impressions->size(), 2U);
  EXPECT_EQ((*impressions)[0]->url(), Text("outer"));
  EXPECT_EQ((*impressions)[1]->url(), Text("i"));
}

TEST_F(ParseLoopTest, AChainThatEndsOnItsFifthDocumentIsTooLongAndNoOther) {
  const int codes[] = {0, 0, 0, 0, kWrapperLimit, 0};
  for (int documents = 1; documents <= 6; ++documents) {
    web_.clear();
    asked_.clear();
    serveChain(documents, clickableAd());
    const auto ad = TamzoVastAd::initWithVast(documents == 1 ? clickableAd()
                                                             : wrapperTo("http://ads.example/2"));
    EXPECT_EQ(ad->errorCode(), codes[documents - 1]) << documents << " documents";
    EXPECT_EQ(ad->mediaFiles()->size(), 1U) << documents << " documents";
    EXPECT_EQ(asked_.size(), static_cast<std::size_t>(documents - 1));
  }
}

TEST_F(ParseLoopTest, ASixthWrapperIsReadButNotFollowed) {
  serveChain(9, clickableAd());
  const auto ad = TamzoVastAd::initWithVast(wrapperTo("http://ads.example/2"));
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_EQ(ad->vastTagURI(), Text("http://ads.example/7"));
  EXPECT_EQ(asked_.size(), 5U);
  EXPECT_TRUE(ad->mediaFiles()->empty());
}

TEST_F(ParseLoopTest, AnErrorOnTheFifthDocumentStays) {
  serveChain(5, "<VAST version='3.0'/>");
  EXPECT_EQ(TamzoVastAd::initWithVast(wrapperTo("http://ads.example/2"))->errorCode(), kNoAd);
}

TEST_F(ParseLoopTest, ImaTrackingEndsTheChainAfterItsDocument) {
  web_["http://ads.example/2"] = clickableAd();
  auto ad = TamzoVastAd::initWithVast(wrapperTo("http://ads.example/2", kImaTracking));
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_TRUE(ad->isImaEnabled());
  EXPECT_EQ(ad->vastTagURI(), Text("http://ads.example/2"));
  EXPECT_TRUE(asked_.empty());

  // Stopped before a sixth pass the counter stands at five, which is one too many.
  serveChain(5, wrapperTo("http://ads.example/6", kImaTracking));
  ad = TamzoVastAd::initWithVast(wrapperTo("http://ads.example/2"));
  EXPECT_EQ(ad->errorCode(), kWrapperLimit);
  EXPECT_EQ(ad->vastTagURI(), Text("http://ads.example/6"));
}

TEST_F(ParseLoopTest, ARecordThatHasImaTrackingAlreadyReadsNothing) {
  const auto ad = TamzoVastAd::initWithVast(clickableAd("3.0", kImaTracking));
  ASSERT_TRUE(ad->isImaEnabled());
  ad->parseVast(clickableAd());
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_TRUE(ad->mediaFiles()->empty());
  EXPECT_EQ(ad->vastTagURI(), Text(clickableAd()));
  ad->parseVast("abc");
  EXPECT_EQ(ad->errorCode(), 0) << "not even the prefix is looked at";
}

TEST_F(ParseLoopTest, ATagUrlIsTrimmedAndLoggedWithoutPrefix) {
  web_["http://ads.example/2"] = clickableAd();
  collectLog();
  const auto ad =
      TamzoVastAd::initWithVast(wrapperTo("<![CDATA[http://ads.example/2 \n\xC2\xA0]]>"));
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_EQ(ad->vastTagURI(), Text("http://ads.example/2"));
  EXPECT_EQ(asked_, std::vector<std::string>{"http://ads.example/2"});
  const auto lines = log();
  const auto first =
      std::find(lines.begin(), lines.end(), "vastTagURI = http://ads.example/2 \n\xC2\xA0");
  ASSERT_NE(first, lines.end());
  ASSERT_NE(first + 1, lines.end());
  EXPECT_EQ(*(first + 1), "url formed from vastTagURI = http://ads.example/2");
}

TEST_F(ParseLoopTest, WhiteSpaceInFrontOfATagUrlMakesItNone) {
  web_["http://ads.example/2"] = clickableAd();
  const auto ad = TamzoVastAd::initWithVast(wrapperTo("\n  http://ads.example/2"));
  EXPECT_EQ(ad->errorCode(), kNotXml);
  EXPECT_EQ(ad->vastTagURI(), Text("\n  http://ads.example/2"));
  EXPECT_TRUE(asked_.empty());
}

TEST_F(ParseLoopTest, ATagThatIsADocumentIsReadInPlace) {
  const auto ad = TamzoVastAd::initWithVast(wrapperTo("<![CDATA[" + clickableAd() + "]]>"));
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_EQ(ad->mediaFiles()->size(), 1U);
}

TEST_F(ParseLoopTest, AWrapperWithoutATagIsAnExceptionAndKeepsWhatItHeld) {
  for (const char* tag : {"", "<VASTAdTagURI/>", "<VASTAdTagURI>abc</VASTAdTagURI>"}) {
    const auto ad = TamzoVastAd::initWithVast(
        std::string("<VAST version='3.0'><Ad id='w'><Wrapper><Impression>i</Impression>") + tag +
        "</Wrapper></Ad></VAST>");
    EXPECT_EQ(ad->errorCode(), kException) << tag;
    EXPECT_EQ(ad->trackers()->find("Impression")->size(), 1U) << tag;
  }
}

TEST_F(ParseLoopTest, AFailureFurtherDownTheChainKeepsWhatWasRead) {
  const auto ad = TamzoVastAd::initWithVast(
      wrapperTo("http://ads.example/unknown", "<Impression>outer</Impression>"));
  EXPECT_EQ(ad->errorCode(), kEmptyContent);
  EXPECT_EQ(ad->adID(), Text("wrapper"));
  EXPECT_EQ(ad->trackers()->find("Impression")->size(), 1U);
}

TEST_F(ParseLoopTest, OnlyTheResponseItselfLosesItsDefaultNamespace) {
  const std::string rest = clickableAd().substr(clickableAd().find("<Ad"));
  const std::string namespaced = "<VAST version='3.0' xmlns='urn:vast' id='1'>" + rest;
  EXPECT_EQ(TamzoVastAd::initWithVast(namespaced)->errorCode(), 0);

  web_["http://ads.example/2"] = namespaced;
  auto ad = TamzoVastAd::initWithVast(wrapperTo("http://ads.example/2"));
  EXPECT_EQ(ad->errorCode(), kBadVersion);
  EXPECT_TRUE(ad->vpaidVastVersion().isNil());
  EXPECT_EQ(TamzoVastAd::initWithVast("http://ads.example/2")->errorCode(), kBadVersion);

  ad->parseVast(namespaced);
  EXPECT_EQ(ad->errorCode(), kBadVersion) << "parseVast reads the text as it stands";
}

TEST_F(ParseLoopTest, TheCleanUpTakesTheAttributeAfterTheNamespaceWithIt) {
  const std::string rest = clickableAd().substr(clickableAd().find("<Ad"));
  // "xmlnsversion='3.0'"
  auto ad = TamzoVastAd::initWithVast("<VAST xmlns='urn:vast' version='3.0'>" + rest);
  EXPECT_EQ(ad->errorCode(), kBadVersion);
  EXPECT_TRUE(ad->vastResponseStr().view().starts_with("<VAST xmlnsversion='3.0'>"))
      << "the record keeps the text that was parsed";
  // The ">" and the line break go too.
  ad = TamzoVastAd::initWithVast("<VAST version='3.0' xmlns='urn:vast'>\n" + rest);
  EXPECT_EQ(ad->errorCode(), kNotXml);
}

TEST_F(ParseLoopTest, AReaderThatThrowsHasReadNothing) {
  collectLog();
  readUrlsWith(
      [](const Text&) -> std::optional<std::string> { throw std::runtime_error("no network"); });
  const auto ad = TamzoVastAd::initWithVast("http://ads.example/1 ");
  EXPECT_EQ(ad->errorCode(), kEmptyContent);
  EXPECT_EQ(ad->vastTagURI(), Text("http://ads.example/1")) << "trimmed before the read";
  EXPECT_TRUE(logged("error: no network"));
  EXPECT_TRUE(logged("empty vast string content!"));
}

TEST_F(ParseLoopTest, AnExceptionOutsideTheReadEndsTheParse) {
  MacroHooks hooks;
  hooks.replace = [](const Text&, const TamzoVastAd&) -> Text {
    throw std::runtime_error("no macros");
  };
  fillMacrosWith(std::move(hooks));
  collectLog();
  const auto ad = TamzoVastAd::initWithVast(wrapperTo("http://ads.example/2"));
  EXPECT_EQ(ad->errorCode(), kException);
  EXPECT_EQ(ad->vastTagURI(), Text("http://ads.example/2")) << "nothing is rolled back";
  EXPECT_TRUE(asked_.empty());
  EXPECT_NE(log().back().find("no macros"), std::string::npos) << log().back();
}

TEST_F(ParseLoopTest, WhatIsNoStdExceptionPassesThroughToTheCaller) {
  struct HostsOwn {
    int value;
  };
  readUrlsWith([](const Text&) -> std::optional<std::string> { throw HostsOwn{7}; });
  EXPECT_THROW(TamzoVastAd::initWithVast("http://ads.example/1"), HostsOwn);

  MacroHooks hooks;
  hooks.replace = [](const Text&, const TamzoVastAd&) -> Text { throw HostsOwn{8}; };
  fillMacrosWith(std::move(hooks));
  EXPECT_THROW(TamzoVastAd::initWithVast(wrapperTo("http://ads.example/2")), HostsOwn);
}

TEST_F(ParseLoopTest, AReaderWithoutMemoryHasReadNothing) {
  for (const bool isLogged : {false, true}) {
    if (isLogged) {
      collectLog();
    }
    readUrlsWith([](const Text&) -> std::optional<std::string> { throw std::bad_alloc(); });
    EXPECT_EQ(TamzoVastAd::initWithVast("http://ads.example/1")->errorCode(), kEmptyContent);
    readUrlsWith(
        [](const Text&) -> std::optional<std::string> { throw std::bad_array_new_length(); });
    EXPECT_EQ(TamzoVastAd::initWithVast(wrapperTo("http://ads.example/2"))->errorCode(),
              kEmptyContent);
  }
  EXPECT_TRUE(logged("error: the host's reader ran out of memory"));
}

TEST_F(ParseLoopTest, NoReaderIsAskedForATagThatIsTooLongForAUrl) {
  const std::string tag = "http://ads.example/" + std::string(std::size_t{1} << 20U, 'x');
  const auto ad = TamzoVastAd::initWithVast(wrapperTo(tag));
  EXPECT_EQ(ad->errorCode(), kEmptyContent);
  EXPECT_EQ(ad->vastTagURI(), tag);
  EXPECT_EQ(TamzoVastAd::initWithVast(tag)->errorCode(), kEmptyContent);
  EXPECT_TRUE(asked_.empty());
}

TEST_F(ParseLoopTest, ALogThatThrowsAtAnyLineEndsTheParseAndNothingMore) {
  web_["http://ads.example/2"] = clickableAd();
  const std::string response = wrapperTo("http://ads.example/2");
  isTamzoDebugEnabled = true;
  int lines = 0;
  bool hasThrown = true;
  for (int failing = 1; hasThrown; ++failing) {
    lines = 0;
    hasThrown = false;
    writeLogTo([&](std::string_view) {
      if (++lines >= failing) {
        hasThrown = true;
        throw std::runtime_error("the disk is full");
      }
    });
    const auto ad = TamzoVastAd::initWithVast(response);
    EXPECT_EQ(ad->errorCode(), hasThrown ? kException : kNoError) << "line " << failing;
  }
  EXPECT_GT(lines, 10);
}

}  // namespace
}  // namespace tamzo::testing
