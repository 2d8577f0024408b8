// Every hostile shape at 1 MB and 10 MB: the time that libxml2 takes for its tree (the floor), the
// time of the parse with the JSON of its record, and the memory at its highest. Each measurement
// is a process of its own, with a limit, since the floor of some shapes never ends.

#include <fcntl.h>
#include <libxml/parser.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "bench/Floor.h"
#include "bench/HostileDocuments.h"
#include "tamzo/net/TamzoUrlReader.h"
#include "tamzo/vast/RecordJson.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "tests/support/HostHooks.h"

namespace tamzo::bench {
namespace {

constexpr std::size_t kSmall = 1'000'000;
constexpr std::size_t kLarge = 10'000'000;
constexpr double kMostGrowth = 12.0;
constexpr double kMostToFloor = 3.0;
// Below this a ratio of two times says more about the clock than about the work.
constexpr double kLeastSeconds = 0.002;

struct Options {
  std::string_view filter;
  unsigned limitSeconds = 20;
  bool isCheck = false;
};

enum class What { floor, parse, json };

struct Measured {
  double seconds = 0.0;
  std::int32_t errorCode = 0;
  std::size_t jsonBytes = 0;
  std::size_t peakKilobytes = 0;
};

double secondsNow() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// One run in a process that has done nothing else, so that 1 MB and 10 MB both pay for fresh
// memory. Elapsed time, since processor time is counted in ticks of milliseconds on some machines.
Measured measure(What what, const std::string& text) {
  Measured measured;
  const auto response = Text::sharing(text, nullptr);
  const auto record = what == What::json ? TamzoVastAd::initWithVast(response) : nullptr;
  const double begin = secondsNow();
  switch (what) {
    case What::floor:
      buildAndFreeTree(text);
      break;
    case What::parse:
      measured.errorCode = TamzoVastAd::initWithVast(response)->errorCode();
      break;
    case What::json:
      measured.jsonBytes = recordAsJson(*record).size();
      break;
  }
  measured.seconds = secondsNow() - begin;
  return measured;
}

[[noreturn]] void measureAndExit(What what, const HostileShape& shape, std::size_t bytes,
                                 unsigned limitSeconds, int out) {
  // No handler: the process ends, whatever it is caught in.
  const rlimit limit{limitSeconds, limitSeconds};
  setrlimit(RLIMIT_CPU, &limit);
  // The floor of some shapes writes a warning for each of a million declarations.
  dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
  testing::readUrlsWith([](const Text&) { return std::optional<std::string>(); });
  int status = 0;
  try {
    const Measured measured = measure(what, shape.make(bytes));
    status = write(out, &measured, sizeof measured) == sizeof measured ? 0 : 1;
  } catch (const std::exception&) {
    status = 1;
  }
  _exit(status);
}

// Nothing when the limit passed or the process died.
std::optional<Measured> measureOnce(What what, const HostileShape& shape, std::size_t bytes,
                                    unsigned limitSeconds) {
  int ends[2];
  if (pipe(ends) != 0) {
    throw std::runtime_error("no pipe");
  }
  const pid_t child = fork();
  if (child < 0) {
    throw std::runtime_error("no process");
  }
  if (child == 0) {
    measureAndExit(what, shape, bytes, limitSeconds, ends[1]);
  }
  close(ends[1]);
  Measured measured;
  const bool isWhole = read(ends[0], &measured, sizeof measured) == sizeof measured;
  close(ends[0]);
  rusage usage{};
  wait4(child, nullptr, 0, &usage);
  measured.peakKilobytes = static_cast<std::size_t>(usage.ru_maxrss);
  return isWhole ? std::optional(measured) : std::nullopt;
}

// The best of a few; long ones are measured once.
std::optional<Measured> measureApart(What what, const HostileShape& shape, std::size_t bytes,
                                     unsigned limitSeconds) {
  constexpr int kMostRuns = 5;
  constexpr double kBudget = 0.5;
  auto best = measureOnce(what, shape, bytes, limitSeconds);
  double spent = best ? best->seconds : kBudget;
  for (int run = 1; run < kMostRuns && spent < kBudget; ++run) {
    const auto next = measureOnce(what, shape, bytes, limitSeconds);
    spent += next ? next->seconds : kBudget;
    if (next && next->seconds < best->seconds) {
      best = next;
    }
  }
  return best;
}

std::string milliseconds(const std::optional<Measured>& measured) {
  if (!measured) {
    return "-";
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", measured->seconds * 1e3);
  return text;
}

std::string ratio(const std::optional<Measured>& of, const std::optional<Measured>& to) {
  if (!of || !to) {
    return "-";
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", of->seconds / to->seconds);
  return text;
}

// True when the time is small against the bound, or so small that it does not matter.
bool isWithin(const std::optional<Measured>& of, const std::optional<Measured>& to, double most) {
  return of && (of->seconds < kLeastSeconds || !to || of->seconds <= most * to->seconds);
}

bool run(const HostileShape& shape, const Options& options) {
  const auto apart = [&](What what, std::size_t bytes) {
    return measureApart(what, shape, bytes, options.limitSeconds);
  };
  const auto smallFloor = apart(What::floor, kSmall);
  const auto floor = smallFloor ? apart(What::floor, kLarge) : std::nullopt;
  const auto smallParse = apart(What::parse, kSmall);
  const auto parse = apart(What::parse, kLarge);
  const auto smallJson = apart(What::json, kSmall);
  const auto json = apart(What::json, kLarge);

  std::string verdict;
  const auto note = [&verdict](bool holds, const char* what) {
    verdict += holds ? "" : verdict.empty() ? what : std::string(", ") + what;
  };
  note(smallParse && smallParse->errorCode == shape.errorCode, "WRONG CODE");
  note(isWithin(parse, smallParse, kMostGrowth), "GROWTH");
  note(isWithin(parse, floor, kMostToFloor), "FLOOR");
  note(isWithin(json, smallJson, kMostGrowth), "JSON GROWTH");

  std::printf("%-42s %4d %4d %9s %9s %7s %9s %7s %7s %9s %7s %7zu %7zu  %s\n",
              std::string(shape.name).c_str(), smallParse ? smallParse->errorCode : -1,
              parse ? parse->errorCode : -1, milliseconds(smallParse).c_str(),
              milliseconds(parse).c_str(), ratio(parse, smallParse).c_str(),
              milliseconds(floor).c_str(), ratio(floor, smallFloor).c_str(),
              ratio(parse, floor).c_str(), milliseconds(json).c_str(),
              ratio(json, smallJson).c_str(), parse ? parse->peakKilobytes / 1024 : 0,
              json ? json->peakKilobytes / 1024 : 0, verdict.c_str());
  std::fflush(stdout);
  return verdict.empty();
}

int usage() {
  std::fprintf(stderr, "usage: tamzo_bench_hostile [--check] [--limit SECONDS] [PART OF A NAME]\n");
  return 2;
}

}  // namespace
}  // namespace tamzo::bench

int main(int argc, char** argv) {
  using namespace tamzo::bench;
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--check") {
      options.isCheck = true;
    } else if (argument == "--limit" && i + 1 < argc) {
      options.limitSeconds = static_cast<unsigned>(std::max(1, std::atoi(argv[++i])));
    } else if (argument.starts_with("-")) {
      return usage();
    } else {
      options.filter = argument;
    }
  }
  std::printf("%-42s %4s %4s %9s %9s %7s %9s %7s %7s %9s %7s %7s %7s\n", "milliseconds", "code",
              "code", "parse", "parse", "10 : 1", "floor", "10 : 1", "parse :", "json", "10 : 1",
              "MB at", "with");
  std::printf("%-42s %4s %4s %9s %9s %7s %9s %7s %7s %9s %7s %7s %7s\n", "", "1MB", "10MB", "1MB",
              "10MB", "", "10MB", "", "floor", "10MB", "", "most", "json");
  bool isWithin = true;
  for (const HostileShape& shape : hostileShapes()) {
    if (shape.name.find(options.filter) != std::string_view::npos) {
      isWithin = run(shape, options) && isWithin;
    }
  }
  return options.isCheck && !isWithin ? 1 : 0;
}
