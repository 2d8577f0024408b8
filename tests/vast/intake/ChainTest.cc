// What one parse is given beside its response, and what its observer is told.

#include "vast/intake/Chain.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tamzo/vast/RecordJson.h"
#include "tests/support/FetchFixture.h"
#include "tests/support/Responses.h"

namespace tamzo::testing {
namespace {

struct Told {
  std::int32_t number;
  HopSource source;
  Text tag;
  Text url;
  std::optional<FetchResult> fetch;
  Text document;
  bool wasParsed;
  std::int32_t errorCode;
  Text adId;
};

class Recorder : public ParseObserver {
 public:
  void onHop(const Hop& hop) override {
    EXPECT_EQ(hop.errorCode, hop.record.errorCode());
    told.push_back({hop.number, hop.source, hop.tag, hop.url,
                    hop.fetch == nullptr ? std::nullopt : std::optional(*hop.fetch), hop.document,
                    hop.parsed != nullptr, hop.errorCode, hop.record.adID()});
  }

  std::vector<Told> told;
};

// A chain of documents by URL, read by the host.
class ChainTest : public SdkTest {
 protected:
  ChainTest() {
    host_.readUrl = [this](const Text& url) -> std::optional<std::string> {
      asked_.emplace_back(url.view());
      const auto found = documents_.find(std::string(url.view()));
      return found == documents_.end() ? std::nullopt : std::optional(found->second);
    };
    options_.host = &host_;
    options_.observer = &observer_;
  }

  std::shared_ptr<TamzoVastAd> parse(const std::string& response) const {
    return TamzoVastAd::initWithVast(Text(response), options_);
  }
  const std::vector<Told>& told() const { return observer_.told; }

  TamzoHost host_;
  ParseOptions options_;
  Recorder observer_;
  std::map<std::string, std::string> documents_;
  std::vector<std::string> asked_;
};

const std::string kInline = inlineAd("3.0");

TEST_F(ChainTest, TheObserverIsToldOfEachHopInOrder) {
  const std::string response =
      "<VAST version='3.0' xmlns='a' x='1'><Ad id='w'><Wrapper><VASTAdTagURI>http://a.example/b "
      "c?[CACHEBUSTING] </VASTAdTagURI></Wrapper></Ad></VAST>";
  host_.readUrl = [&](const Text& url) {
    asked_.emplace_back(url.view());
    return std::optional(kInline);
  };
  const auto ad = parse(response);
  EXPECT_EQ(ad->errorCode(), 0);
  ASSERT_EQ(told().size(), 2U);

  EXPECT_EQ(told()[0].number, 1);
  EXPECT_EQ(told()[0].source, HopSource::input);
  EXPECT_TRUE(told()[0].tag.isNil());
  EXPECT_TRUE(told()[0].url.isNil());
  EXPECT_FALSE(told()[0].fetch);
  EXPECT_EQ(told()[0].document, Text(response)) << "as received, before the clean-up";
  EXPECT_TRUE(told()[0].wasParsed);
  EXPECT_EQ(told()[0].errorCode, 0);
  EXPECT_EQ(told()[0].adId, "w");

  EXPECT_EQ(told()[1].number, 2);
  EXPECT_EQ(told()[1].source, HopSource::url);
  EXPECT_EQ(told()[1].tag, "http://a.example/b c?[CACHEBUSTING] ");
  EXPECT_EQ(told()[1].url, ad->vastTagURI());
  EXPECT_NE(told()[1].url, "http://a.example/b c?[CACHEBUSTING]") << "macros are filled";
  EXPECT_FALSE(told()[1].url.view().ends_with(' ')) << "and white space is gone";
  ASSERT_TRUE(told()[1].fetch);
  EXPECT_EQ(told()[1].fetch->failure, FetchFailure::none);
  EXPECT_EQ(told()[1].fetch->bytes, kInline.size());
  EXPECT_EQ(told()[1].fetch->finalUrl, asked_.at(0));
  EXPECT_EQ(told()[1].document, Text(kInline));
  EXPECT_TRUE(told()[1].wasParsed);
}

TEST_F(ChainTest, AUrlIsAFirstHopThatIsFetched) {
  documents_["http://a.example/"] = kInline;
  parse(" http://a.example/");
  ASSERT_EQ(told().size(), 1U);
  EXPECT_EQ(told()[0].source, HopSource::input) << "a blank before it makes it a document";
  parse("http://a.example/");
  ASSERT_EQ(told().size(), 2U);
  EXPECT_EQ(told()[1].source, HopSource::url);
  EXPECT_TRUE(told()[1].tag.isNil());
  EXPECT_EQ(told()[1].url, "http://a.example/");
  EXPECT_EQ(told()[1].document, Text(kInline));
}

TEST_F(ChainTest, ATagThatIsNoUrlIsAHopOfItsOwn) {
  parse(wrapper("3.0", "", "//a.example/"));
  ASSERT_EQ(told().size(), 2U);
  EXPECT_EQ(told()[1].source, HopSource::tag);
  EXPECT_EQ(told()[1].tag, "//a.example/");
  EXPECT_TRUE(told()[1].url.isNil());
  EXPECT_EQ(told()[1].document, "//a.example/");
  EXPECT_FALSE(told()[1].wasParsed);
  EXPECT_EQ(told()[1].errorCode, kNotXml);
}

TEST_F(ChainTest, ATagThatIsTooShortFailsTheHopThatHasIt) {
  EXPECT_EQ(parse(wrapper("3.0", "", "ab"))->errorCode(), kException);
  ASSERT_EQ(told().size(), 1U);
  EXPECT_EQ(told()[0].errorCode, kException);
  EXPECT_EQ(parse("ab")->errorCode(), kException);
  ASSERT_EQ(told().size(), 2U);
  EXPECT_EQ(told()[1].number, 1);
  EXPECT_EQ(told()[1].document, "ab");
  EXPECT_EQ(told()[1].errorCode, kException);
}

TEST_F(ChainTest, AFetchThatFailedIsToldAsOne) {
  struct Row {
    std::optional<std::string> body;
    FetchFailure failure;
    bool hasDocument;
  };
  const std::vector<Row> rows{{std::nullopt, FetchFailure::other, false},
                              {"", FetchFailure::empty, true},
                              {"<VAST>\xE4</VAST>", FetchFailure::notUtf8, false},
                              {"no XML", FetchFailure::none, true}};
  for (const Row& row : rows) {
    observer_.told.clear();
    host_.readUrl = [&](const Text&) { return row.body; };
    parse("http://a.example/");
    ASSERT_EQ(told().size(), 1U);
    ASSERT_TRUE(told()[0].fetch);
    EXPECT_EQ(told()[0].fetch->failure, row.failure);
    EXPECT_EQ(!told()[0].document.isNil(), row.hasDocument);
    EXPECT_NE(told()[0].errorCode, 0);
    EXPECT_EQ(told()[0].fetch->body.has_value(), row.failure == FetchFailure::notUtf8);
  }
}

TEST_F(ChainTest, WhatAHostsReaderThrowsIsAFailedFetchToo) {
  host_.readUrl = [](const Text&) -> std::optional<std::string> { throw std::runtime_error("x"); };
  EXPECT_EQ(parse("http://a.example/")->errorCode(), kEmptyContent);
  host_.readUrl = [](const Text&) -> std::optional<std::string> { throw std::bad_alloc(); };
  EXPECT_EQ(parse("http://a.example/")->errorCode(), kEmptyContent);
  ASSERT_EQ(told().size(), 2U);
  for (const Told& each : told()) {
    ASSERT_TRUE(each.fetch);
    EXPECT_EQ(each.fetch->failure, FetchFailure::other);
  }
}

TEST_F(ChainTest, AHopIsToldWithTheCodeThatTheChainEndsWith) {
  for (int i = 2; i <= 4; ++i) {
    documents_["http://a.example/" + std::to_string(i)] =
        wrapper("3.0", "", "http://a.example/" + std::to_string(i + 1));
  }
  documents_["http://a.example/5"] = kInline;
  EXPECT_EQ(parse(wrapper("3.0", "", "http://a.example/2"))->errorCode(), kWrapperLimit);
  ASSERT_EQ(told().size(), 5U);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(told()[static_cast<std::size_t>(i)].number, i + 1);
    EXPECT_EQ(told()[static_cast<std::size_t>(i)].errorCode, i == 4 ? kWrapperLimit : 0);
  }
}

TEST_F(ChainTest, AHopThatThrewIsToldWithError100) {
  EXPECT_EQ(
      parse(inlineAd("3.0", "", "<TrackingEvents><Tracking>u</Tracking></TrackingEvents>" + kVideo))
          ->errorCode(),
      kException);
  ASSERT_EQ(told().size(), 1U);
  EXPECT_EQ(told()[0].errorCode, kException);
  EXPECT_TRUE(told()[0].wasParsed);
}

struct Throwing : ParseObserver {
  void onHop(const Hop&) override {
    ++calls;
    throw std::runtime_error("no");
  }
  int calls = 0;
};

TEST_F(ChainTest, AnObserverThatThrowsEndsTheParseAndIsToldNoMore) {
  documents_["http://a.example/"] = kInline;
  Throwing observer;
  options_.observer = &observer;
  EXPECT_EQ(parse(kInline)->errorCode(), kException);
  EXPECT_EQ(parse(wrapper("3.0", "", "http://a.example/"))->errorCode(), kException);
  EXPECT_EQ(observer.calls, 2);
}

TEST_F(ChainTest, TheObserverChangesNothing) {
  documents_["http://a.example/"] = kInline;
  const auto with = parse(wrapper("3.0", "<Impression>i</Impression>", "http://a.example/"));
  options_.observer = nullptr;
  const auto without = parse(wrapper("3.0", "<Impression>i</Impression>", "http://a.example/"));
  EXPECT_EQ(recordAsJson(*with), recordAsJson(*without));
}

TEST_F(ChainTest, AParseOfARecordIsToldToo) {
  TamzoVastAd ad;
  ad.parseVast(Text(kInline), options_);
  ad.parseVast(ad.vastResponseStr(), options_);
  ASSERT_EQ(told().size(), 2U);
  EXPECT_EQ(told()[1].number, 1);
  EXPECT_EQ(told()[1].document, Text(kInline));
}

// ---- Deadline and cancellation -------------------------------------------------------------

TEST_F(ChainTest, PastTheDeadlineEveryFetchHasFailedAndNothingIsRolledBack) {
  for (const double none : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    options_.totalSeconds = none;
    const auto ad = parse(wrapper("3.0", "<Impression>i</Impression>"));
    EXPECT_EQ(ad->errorCode(), kEmptyContent);
    EXPECT_EQ(ad->adID(), "wrapper");
    EXPECT_NE(ad->trackers()->find("Impression"), nullptr);
    EXPECT_EQ(told().back().fetch->failure, FetchFailure::timeout);
    EXPECT_EQ(parse(kInline)->errorCode(), 0) << "what needs no fetch needs no time";
  }
  EXPECT_TRUE(asked_.empty());
}

TEST_F(ChainTest, ACancelledChainFailsItsFetches) {
  documents_["http://a.example/2"] = wrapper("3.0", "", "http://a.example/3");
  documents_["http://a.example/3"] = kInline;
  options_.cancellation = Cancellation();
  host_.readUrl = [this](const Text& url) {
    asked_.emplace_back(url.view());
    if (url == "http://a.example/3") {
      options_.cancellation.cancel();
    }
    return std::optional(documents_.at(std::string(url.view())));
  };
  EXPECT_EQ(parse(wrapper("3.0", "", "http://a.example/2"))->errorCode(), kEmptyContent);
  EXPECT_EQ(told().back().number, 3);
  EXPECT_EQ(told().back().fetch->failure, FetchFailure::cancelled);
  EXPECT_EQ(parse("http://a.example/2")->errorCode(), kEmptyContent);
  EXPECT_EQ(asked_.size(), 2U) << "nobody is asked once it is cancelled";
}

TEST_F(ChainTest, AHostsReaderIsGivenDeadlineCancellationAndHop) {
  std::vector<FetchRequest> requests;
  host_.fetchOptions.userAgent = "App/1";
  host_.fetchLimits.maxBodyBytes = 7000;
  host_.fetch = [&](const FetchRequest& request) {
    requests.push_back(request);
    FetchResult result;
    result.body = request.hop < 3 ? wrapper("3.0") : kInline;
    result.bytes = result.body->size();
    return result;
  };
  options_.totalSeconds = 1000.0;
  options_.cancellation = Cancellation();
  EXPECT_EQ(parse(wrapper("3.0"))->errorCode(), 0);
  ASSERT_EQ(requests.size(), 2U);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(requests[i].hop, static_cast<int>(i) + 2);
    EXPECT_EQ(requests[i].url, "http://ads.example/2");
    EXPECT_EQ(requests[i].options.userAgent, "App/1");
    EXPECT_EQ(requests[i].limits.maxBodyBytes, 7000U);
    EXPECT_GT(requests[i].deadline.secondsLeft(), 1.0);
    EXPECT_LE(requests[i].deadline.secondsLeft(), 1000.0);
    EXPECT_FALSE(requests[i].cancellation.isCancelled());
  }
  options_.cancellation.cancel();
  EXPECT_TRUE(requests[0].cancellation.isCancelled());
}

TEST_F(ChainTest, ABodyMayHaveWhatTheBodiesBeforeItHaveLeft) {
  std::vector<std::size_t> most;
  host_.fetch = [&](const FetchRequest& request) {
    most.push_back(request.limits.maxBodyBytes);
    FetchResult result;
    result.body = request.hop < 4 ? wrapper("3.0") : kInline;
    result.bytes = 1000;
    return result;
  };
  host_.fetchLimits.maxBodyBytes = 2000;
  host_.fetchLimits.maxChainBytes = 2500;
  EXPECT_EQ(parse(wrapper("3.0"))->errorCode(), 0);
  EXPECT_EQ(most, (std::vector<std::size_t>{2000, 1500, 500}));
  most.clear();
  host_.fetchLimits.maxChainBytes = 10;
  parse(wrapper("3.0"));
  EXPECT_EQ(most, (std::vector<std::size_t>{2000, 1000, 0}))
      << "a chain may have one body at least";
}

TEST_F(ChainTest, ADocumentMayHaveTheNodesThatThoseBeforeItHaveLeft) {
  const auto padded = [](const std::string& document, int nodes) {
    std::string extra;
    for (int i = 0; i < nodes; ++i) {
      extra += "<a/>";
    }
    return document.substr(0, document.size() - std::string("</VAST>").size()) + extra + "</VAST>";
  };
  documents_["http://a.example/2"] = padded(wrapper("3.0", "", "http://a.example/3"), 1000);
  documents_["http://a.example/3"] = padded(kInline, 1000);
  const std::string first = padded(wrapper("3.0", "", "http://a.example/2"), 1000);
  host_.fetchLimits.maxChainNodes = 3100;
  EXPECT_EQ(parse(first)->errorCode(), 0);
  host_.fetchLimits.maxChainNodes = 2900;
  const auto ad = parse(first);
  EXPECT_EQ(ad->errorCode(), kNotXml);
  EXPECT_EQ(ad->adID(), "wrapper") << "nothing is rolled back";
  EXPECT_EQ(told().back().number, 3);
  host_.fetchLimits.maxChainNodes = 0;
  EXPECT_EQ(parse(first)->errorCode(), kNotXml);
  EXPECT_EQ(told().back().number, 2) << "the first may have any number";
  EXPECT_EQ(parse(padded(kInline, 1000))->errorCode(), 0);
}

TEST_F(ChainTest, TheHostsLimitOfAChainHoldsBesideThatOfTheParse) {
  host_.fetchLimits.chainSeconds = 0.0;
  EXPECT_EQ(parse(wrapper("3.0"))->errorCode(), kEmptyContent);
  EXPECT_EQ(told().back().fetch->failure, FetchFailure::timeout);
  host_.fetchLimits.chainSeconds = 1000.0;
  options_.totalSeconds = 0.0;
  EXPECT_EQ(parse(wrapper("3.0"))->errorCode(), kEmptyContent);
  EXPECT_EQ(told().back().fetch->failure, FetchFailure::timeout);
  EXPECT_TRUE(asked_.empty());
}

}  // namespace
}  // namespace tamzo::testing
