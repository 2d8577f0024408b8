// A chain of documents. The input is cut at form feeds, which no XML document may hold; the first
// piece is the response, the others answer the fetches one after another.

#include <algorithm>
#include <array>
#include <functional>
#include <vector>

#include "fuzz/Fuzzing.h"
#include "tamzo/base/Version.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "tests/support/StrictXml.h"

using namespace tamzo;
using namespace tamzo::fuzz;

namespace {

constexpr std::size_t kMostDocuments = 6;

struct Outcome {
  std::string record;
  std::size_t fetches = 0;
};

bool isUrlCharacter(char c) {
  return c > ' ' && c < '\x7F' && std::string_view("\"<>\\^`{|}").find(c) == std::string_view::npos;
}

/// What the log tells of a parse.
struct Log {
  std::size_t documents = 0;
  bool foundUnit = false;
  std::vector<std::string> versions;

  void add(std::string_view line) {
    constexpr std::string_view kPrefix = "[TAMZO-LOG][v" TAMZO_VERSION " p0] ";
    constexpr std::string_view kVersion = "VAST version is ";
    line.remove_prefix(line.starts_with(kPrefix) ? kPrefix.size() : 0);
    documents += line == "VAST element is present" ? 1U : 0U;
    foundUnit = foundUnit || line == "valid JS vPaid linearNode found!";
    if (line.starts_with(kVersion)) {
      versions.emplace_back(line.substr(kVersion.size()));
    }
  }
};

using Texts = std::vector<std::string>;

// The trackers that every version reads of every document. Order is kept within one kind of
// element; an ad server may give two kinds one name.
Texts trackersOf(const TamzoVastAd& ad) {
  constexpr std::array<std::string_view, 6> kOfSomeOnly{
      "Viewable",           "NotViewable", "ViewUndetermined", "AdVerificationViewable",
      "CustomClickTracker", "canReplay"};
  Texts all;
  for (const auto& [name, events] : *ad.trackers()) {
    if (std::find(kOfSomeOnly.begin(), kOfSomeOnly.end(), name.view()) != kOfSomeOnly.end()) {
      continue;
    }
    for (const auto& event : *events) {
      all.push_back(std::string(name.view()) + "\n" + std::string(event->url().view()) + "\n" +
                    std::string(event->offset().view()));
    }
  }
  std::sort(all.begin(), all.end());
  return all;
}

Texts restOf(const TamzoVastAd& ad) {
  Texts all{std::string(ad.adID().view()), std::string(ad.clickThrough().view()),
            std::string(ad.trackId().view()), std::string(ad.nielsenUrl().view())};
  for (const auto& file : *ad.mediaFiles()) {
    all.emplace_back(file->url().view());
  }
  for (const auto& provider : *ad.measurementProviderList()) {
    all.emplace_back(provider->vendor().view());
  }
  std::size_t companions = 0;
  for (const auto& each : *ad.companionAds()) {
    companions += each->companions().size();
  }
  all.push_back(std::to_string(companions));
  all.push_back(std::to_string(ad.categoryArray() == nullptr ? 0 : ad.categoryArray()->size()));
  all.push_back(std::to_string(ad.expires()));
  return all;
}

void requireSame(const Texts& actual, const Texts& expected, const char* what) {
  const auto joined = [](const Texts& texts) {
    std::string all;
    for (const std::string& text : texts) {
      all += text + "\n";
    }
    return all;
  };
  requireEqual(joined(actual), joined(expected), what);
}

// A unit sees the whole chain in one document, which is read back here.
void checkMerged(const TamzoVastAd& ad, const Log& log) {
  const Text merged = ad.vastTagURI();
  requireEqual(testing::strictComplaint(merged), "", "the merged document is not well-formed");
  require(TamzoVastAd::replaceWithPattern("xmlns", merged) == merged, "the clean-up changes it");
  const auto again = TamzoVastAd::initWithVast(merged);
  require(again->errorCode() == ad.errorCode() || ad.errorCode() != kNoError,
          "the merged document is no ad");
  const bool isOneVersion = std::adjacent_find(log.versions.begin(), log.versions.end(),
                                               std::not_equal_to<>()) == log.versions.end();
  // What versions read of a Wrapper differs.
  if (ad.errorCode() == kNoError && isOneVersion) {
    requireSame(trackersOf(*again), trackersOf(ad), "the merged document has other trackers");
    requireSame(restOf(*again), restOf(ad), "the merged document is another ad");
  }
}

Outcome parseChain(const std::vector<std::string_view>& documents, bool isLogged) {
  Outcome outcome;
  testing::readUrlsWith([&](const Text& url) -> std::optional<std::string> {
    require(url.view().starts_with("http"), "a fetch of what is no URL");
    for (const char c : url.view()) {
      require(isUrlCharacter(c), "a URL holds a character that needs encoding");
    }
    ++outcome.fetches;
    return outcome.fetches < documents.size()
               ? std::optional<std::string>(documents[outcome.fetches])
               : std::nullopt;
  });
  Log log;
  testing::writeLogTo([&log](std::string_view line) { log.add(line); });
  isTamzoDebugEnabled = isLogged;
  const auto ad = TamzoVastAd::initWithVast(Text(documents[0]));
  testing::writeLogTo([](std::string_view) {});
  testing::readUrlsWith([](const Text&) { return std::optional<std::string>(); });

  require(ad != nullptr, "no record");
  require(outcome.fetches <= kMostDocuments, "too many fetches");
  if (isLogged) {
    checkedRecord(*ad);
    const std::size_t parsed = log.documents;
    require(parsed <= kMostDocuments, "too many documents");
    // A pass that does not get as far as a parsed document sets an error of its own.
    require(ad->errorCode() != kWrapperLimit || parsed == 5, "302 on another pass than the fifth");
    require(ad->errorCode() != kNoError || parsed != 5, "no 302 on the fifth pass");
    if (log.foundUnit && ad->vpaidXml() != nullptr) {
      checkMerged(*ad, log);
    }
  }
  ad->getVideoWAPView();
  outcome.record = recordAsJson(*ad);
  return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  makeDeterministic();
  std::vector<std::string_view> documents;
  std::string_view rest = asText(data, size);
  do {
    documents.push_back(takeUpTo(rest, '\f'));
  } while (!rest.empty());
  const Outcome logged = parseChain(documents, true);
  const Outcome silent = parseChain(documents, false);
  require(logged.fetches == silent.fetches, "the log changes the fetches");
  requireEqual(logged.record, silent.record, "the log changes the record");
  return 0;
}
