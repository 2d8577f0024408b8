// A chain of documents. The input is cut at form feeds, which no XML document may hold; the first
// piece is the response, the others answer the fetches one after another.

#include <vector>

#include "fuzz/Fuzzing.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/vast/TamzoVastAd.h"

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
  std::size_t parsed = 0;
  testing::writeLogTo([&parsed](std::string_view line) {
    parsed += line == "[TAMZO-LOG][v8.0.0 p0] VAST element is present" ? 1U : 0U;
  });
  isTamzoDebugEnabled = isLogged;
  const auto ad = TamzoVastAd::initWithVast(Text(documents[0]));
  testing::writeLogTo([](std::string_view) {});
  testing::readUrlsWith([](const Text&) { return std::optional<std::string>(); });

  require(ad != nullptr, "no record");
  require(outcome.fetches <= kMostDocuments, "too many fetches");
  if (isLogged) {
    checkedRecord(*ad);
    require(parsed <= kMostDocuments, "too many documents");
    // A pass that does not get as far as a parsed document sets an error of its own.
    require(ad->errorCode() != kWrapperLimit || parsed == 5, "302 on another pass than the fifth");
    require(ad->errorCode() != kNoError || parsed != 5, "no 302 on the fifth pass");
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
