// One thing, a given number of times, for an instruction counter to watch: see instructions.sh.

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

#include "bench/Documents.h"
#include "bench/Floor.h"
#include "tamzo/vast/RecordJson.h"

namespace {

constexpr std::uint64_t kSeed = 1;

int usage() {
  std::fprintf(stderr, "usage: tamzo_bench_instructions floor|parse|json a|b|c|d|d+xmlns COUNT\n");
  return 2;
}

int run(std::string_view what, std::string_view name, int count) {
  for (const auto& kind : tamzo::bench::kDocumentKinds) {
    if (kind.name != name) {
      continue;
    }
    const std::string text = kind.make(kSeed);
    tamzo::bench::requireSize(kind, text);
    if (what == "floor") {
      for (int i = 0; i < count; ++i) {
        if (!tamzo::bench::buildAndFreeTree(text)) {
          return 1;
        }
      }
      return 0;
    }
    if (what == "json") {
      const auto ad = tamzo::TamzoVastAd::initWithVast(text);
      tamzo::bench::requireWholeRecord(name, *ad);
      for (int i = 0; i < count; ++i) {
        if (tamzo::recordAsJson(*ad).size() < text.size()) {
          return 1;
        }
      }
      return 0;
    }
    if (what == "parse") {
      const auto response = tamzo::Text::sharing(text, nullptr);
      tamzo::bench::requireWholeRecord(name, *tamzo::TamzoVastAd::initWithVast(response));
      for (int i = 0; i < count; ++i) {
        if (tamzo::TamzoVastAd::initWithVast(response)->errorCode() != 0) {
          return 1;
        }
      }
      return 0;
    }
  }
  return usage();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    return usage();
  }
  try {
    return run(argv[1], argv[2], std::atoi(argv[3]));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
