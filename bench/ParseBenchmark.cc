// Times, each beside its floor: README.md says how to read them.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "bench/Documents.h"
#include "bench/Floor.h"
#include "bench/NaiveQueries.h"
#include "tamzo/net/TamzoUrlReader.h"
#include "tamzo/vast/RecordJson.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "tests/support/HostHooks.h"

namespace tamzo::bench {
namespace {

using Clock = std::chrono::steady_clock;
using Work = std::function<void()>;

constexpr std::uint64_t kSeed = 1;

double secondsOf(const Work& work) {
  const auto begin = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

double medianOf(std::vector<double>& samples) {
  const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
  std::nth_element(samples.begin(), middle, samples.end());
  return *middle;
}

// Runs floor and work by turns, so that what disturbs the machine disturbs both, and reports the
// medians and their ratio.
void runBesideFloor(benchmark::State& state, const Work& floor, const Work& work) {
  std::vector<double> floors;
  std::vector<double> works;
  floor();
  work();
  for (auto _ : state) {
    floors.push_back(secondsOf(floor));
    works.push_back(secondsOf(work));
    state.SetIterationTime(works.back());
  }
  const double floorSeconds = medianOf(floors);
  const double workSeconds = medianOf(works);
  state.counters["floor_us"] = floorSeconds * 1e6;
  state.counters["median_us"] = workSeconds * 1e6;
  state.counters["ratio"] = workSeconds / floorSeconds;
}

using Body = std::function<void(benchmark::State&)>;

void add(const std::string& name, Body body) {
  benchmark::RegisterBenchmark(name.c_str(), std::move(body))
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

// ---- One response ---------------------------------------------------------------------------

void addDocument(const DocumentKind& kind) {
  const auto text = std::make_shared<const std::string>(kind.make(kSeed));
  requireSize(kind, *text);
  const auto response = Text::sharing(*text, text);
  const std::string name(kind.name);
  requireWholeRecord(name, *TamzoVastAd::initWithVast(response));

  const Work floor = [text] { benchmark::DoNotOptimize(buildAndFreeTree(*text)); };
  add("parse/" + name, [=](benchmark::State& state) {
    runBesideFloor(state, floor,
                   [&] { benchmark::DoNotOptimize(TamzoVastAd::initWithVast(response)); });
  });
  // Paths without prefixes find nothing in a namespace, so only the parse can read that document.
  if (queryNaively(*text) > 0) {
    add("naive/" + name, [=](benchmark::State& state) {
      runBesideFloor(state, floor, [&] { benchmark::DoNotOptimize(queryNaively(*text)); });
    });
  }
  add("json/" + name, [=](benchmark::State& state) {
    const auto record = TamzoVastAd::initWithVast(response);
    runBesideFloor(state, floor, [&] { benchmark::DoNotOptimize(recordAsJson(*record)); });
  });
}

// ---- A chain --------------------------------------------------------------------------------

void addChain() {
  const auto chain = std::make_shared<const Chain>(wrapperChain(kSeed));
  const auto read = [chain](const Text& url) -> std::optional<std::string> {
    const auto found = chain->bodies.find(url.view());
    return found == chain->bodies.end() ? std::nullopt : std::optional(found->second);
  };
  add("parse/e", [=](benchmark::State& state) {
    testing::readUrlsWith(read);
    const auto response = Text::sharing(chain->response, chain);
    requireWholeRecord("e", *TamzoVastAd::initWithVast(response));
    runBesideFloor(
        state,
        [&] {
          benchmark::DoNotOptimize(buildAndFreeTree(chain->response));
          for (const auto& [url, body] : chain->bodies) {
            benchmark::DoNotOptimize(buildAndFreeTree(body));
          }
        },
        [&] { benchmark::DoNotOptimize(TamzoVastAd::initWithVast(response)); });
    testing::readUrlsWith({});
  });
}

// ---- The namespace collapse alone -----------------------------------------------------------

std::string repeated(std::string_view piece, std::size_t size) {
  std::string text;
  while (text.size() < size) {
    text += piece;
  }
  return text;
}

void addCollapse(const std::string& name, std::string text) {
  add("collapse/" + name, [text = std::move(text)](benchmark::State& state) {
    const auto response = Text::sharing(text, nullptr);
    std::vector<double> samples;
    for (auto _ : state) {
      samples.push_back(secondsOf(
          [&] { benchmark::DoNotOptimize(TamzoVastAd::replaceWithPattern("xmlns", response)); }));
      state.SetIterationTime(samples.back());
    }
    const double seconds = medianOf(samples);
    state.counters["median_us"] = seconds * 1e6;
    state.counters["ns_per_byte"] = seconds * 1e9 / static_cast<double>(text.size());
  });
}

void addCollapses() {
  constexpr std::size_t kSize = 1'000'000;
  addCollapse("ordinary,1MB", largeVast4(kSeed));
  addCollapse("ordinary,13KB", fullVast4(kSeed));
  addCollapse("xmlns=,no-space", repeated("xmlns=", kSize));
  addCollapse("xmlns=,spaces", repeated("xmlns= ", kSize));
  addCollapse("xmlns=,long-values", repeated("xmlns=\"0123456789012345678901234567890\" ", kSize));
  addCollapse("xm-everywhere", repeated("xm", kSize));
  addCollapse("xmln-everywhere", repeated("xmln", kSize));
  addCollapse("x-everywhere", repeated("x", kSize));
  addCollapse("long-s", repeated("xMln\xC5\xBF", kSize));
  addCollapse("one-in-64-bytes", repeated("xmlns:" + std::string(58, 'a'), kSize));
}

// ---- Threads --------------------------------------------------------------------------------

// Arithmetic on registers alone, as the measure of what two threads can give here.
void compute(std::size_t rounds) {
  std::uint64_t x = 88172645463325252U;
  for (std::size_t i = 0; i < rounds; ++i) {
    x ^= x << 13U;
    x ^= x >> 7U;
    x ^= x << 17U;
  }
  benchmark::DoNotOptimize(x);
}

// Twice the time of the work on one thread by that of the same work on each of two.
double speedupOfTwo(const std::function<void(std::size_t thread)>& work) {
  const double one = secondsOf([&] { std::thread([&] { work(0); }).join(); });
  const double two = secondsOf([&] {
    std::thread first([&] { work(0); });
    std::thread second([&] { work(1); });
    first.join();
    second.join();
  });
  return 2.0 * one / two;
}

void addThreads(const DocumentKind& kind) {
  constexpr std::size_t kResponsesPerThread = 8;
  const std::size_t kRounds = std::max<std::size_t>(1, 2'000'000 / kind.maxBytes);
  add("threads/" + std::string(kind.name), [=](benchmark::State& state) {
    std::array<std::vector<std::string>, 2> texts;
    for (std::size_t i = 0; i < 2 * kResponsesPerThread; ++i) {
      texts[i % 2].push_back(kind.make(i + 1));
    }
    const auto parseAll = [&](std::size_t thread) {
      for (std::size_t round = 0; round < kRounds; ++round) {
        for (const std::string& text : texts[thread]) {
          benchmark::DoNotOptimize(TamzoVastAd::initWithVast(Text::sharing(text, nullptr)));
        }
      }
    };
    const auto buildAll = [&](std::size_t thread) {
      for (std::size_t round = 0; round < kRounds; ++round) {
        for (const std::string& text : texts[thread]) {
          benchmark::DoNotOptimize(buildAndFreeTree(text));
        }
      }
    };
    const auto computeAll = [](std::size_t) { compute(50'000'000); };
    std::vector<double> speedups;
    std::vector<double> floors;
    std::vector<double> controls;
    for (auto _ : state) {
      const auto begin = Clock::now();
      speedups.push_back(speedupOfTwo(parseAll));
      floors.push_back(speedupOfTwo(buildAll));
      controls.push_back(speedupOfTwo(computeAll));
      state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
    }
    state.counters["two_to_one"] = medianOf(speedups);
    state.counters["floor_two_to_one"] = medianOf(floors);
    state.counters["control"] = medianOf(controls);
  });
}

// ---- The table ------------------------------------------------------------------------------

class Table : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override {
    PrintBasicContext(&GetErrorStream(), context);
    std::printf("%-28s %12s %12s %8s %10s %10s %8s %8s\n", "", "median us", "floor us", "ratio",
                "ns a byte", "two : one", "floor", "control");
    return true;
  }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) {
        std::printf("%-28s %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
        continue;
      }
      std::string name = run.benchmark_name();
      name.erase(std::min(name.size(), name.find("/manual_time")), 12);
      std::printf("%-28s", name.c_str());
      cell(run, "median_us", 12, 1);
      cell(run, "floor_us", 12, 1);
      cell(run, "ratio", 8, 3);
      cell(run, "ns_per_byte", 10, 3);
      cell(run, "two_to_one", 10, 2);
      cell(run, "floor_two_to_one", 8, 2);
      cell(run, "control", 8, 2);
      std::printf("\n");
      std::fflush(stdout);
    }
  }

 private:
  static void cell(const Run& run, const char* counter, int width, int precision) {
    const auto found = run.counters.find(counter);
    if (found == run.counters.end()) {
      std::printf(" %*s", width, "");
    } else {
      std::printf(" %*.*f", width, precision, found->second.value);
    }
  }
};

void addAll() {
  for (const DocumentKind& kind : kDocumentKinds) {
    addDocument(kind);
  }
  addChain();
  addCollapses();
  addThreads(kDocumentKinds[0]);
  addThreads(kDocumentKinds[2]);
  addThreads(kDocumentKinds[3]);
}

}  // namespace
}  // namespace tamzo::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 2;
  }
  try {
    tamzo::bench::addAll();
    tamzo::bench::Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
