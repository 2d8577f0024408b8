#include "tools/Batch.h"

#include <fmt/format.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <utility>

#include "tamzo/vast/ErrorCodes.h"
#include "tools/AnswerQueue.h"
#include "tools/BatchSources.h"
#include "tools/CommandError.h"
#include "tools/Output.h"
#include "tools/Process.h"
#include "tools/Progress.h"
#include "tools/StandardError.h"
#include "tools/Terminal.h"

namespace tamzo::command {
namespace {

std::string tableOf(const std::map<int, std::size_t>& counts, std::size_t unreadable) {
  std::string table = fmt::format("{:>9}  {:>5}  {}\n", "responses", "error", "meaning");
  for (const auto& [code, count] : counts) {
    const VastError* error = findVastError(code);
    table += fmt::format("{:>9}  {:>5}  {}\n", count, code, error == nullptr ? "" : error->name);
  }
  if (unreadable > 0) {
    table += fmt::format("{:>9}  {:>5}  {}\n", unreadable, "-", "could not be read");
  }
  return table;
}

// A bar would run over what a person types.
bool isBarWanted(const BatchRequest& request) {
  const auto& paths = request.paths;
  const bool readsInput =
      paths.empty() || std::find(paths.begin(), paths.end(), "-") != paths.end();
  return !request.isQuiet && !(readsInput && isTerminal(STDIN_FILENO));
}

/// Where the answers go, and what is counted of them.
class BatchReport {
 public:
  BatchReport(const BatchRequest& request, const BatchSource& source)
      : request_(request),
        output_(request.outputPath),
        progress_(isBarWanted(request), [&source] { return source.size(); }) {}

  void add(BatchAnswer answer) {
    if (!request_.isSummary) {
      answer.line += '\n';
      output_.writeJson(answer.line);
    }
    if (answer.problem.empty()) {
      ++counts_[answer.errorCode];
    } else {
      ++unreadable_;
      complain(answer.problem);
    }
    progress_.step(answer.inputBytes);
  }

  void finish() {
    progress_.finish();
    const std::string table = tableOf(counts_, unreadable_);
    if (request_.isSummary) {
      output_.write(table);
    }
    output_.finish();
    if (!request_.isSummary && !request_.isQuiet) {
      writeToStandardError(table);
    }
  }

  int status() const {
    if (unreadable_ > 0) {
      return kWrongUsage;
    }
    const bool allGood = counts_.empty() || (counts_.size() == 1 && counts_.contains(kNoError));
    return allGood ? kAllPlayable : kSomeFailed;
  }

 private:
  const BatchRequest& request_;
  Output output_;
  Progress progress_;
  std::map<int, std::size_t> counts_;
  std::size_t unreadable_ = 0;
};

// Less where the process may not have much memory.
std::size_t windowBytes() {
  constexpr std::size_t kUsual = std::size_t{64} << 20U;
  constexpr rlim_t kPart = 8;
  rlimit memory{};
  const bool isLimited = getrlimit(RLIMIT_AS, &memory) == 0 && memory.rlim_cur != RLIM_INFINITY;
  return isLimited ? static_cast<std::size_t>(std::min<rlim_t>(memory.rlim_cur / kPart, kUsual))
                   : kUsual;
}

}  // namespace

int runBatch(const BatchRequest& request) {
  keepMemory();
  AnswerForm form = request.form;
  form.hasRecord = !request.isSummary;
  const auto source = sourceOf(request.paths, request.isRecursive, form);
  BatchReport report(request, *source);
  answerAll(*source, {request.threads, request.inOrder, windowBytes()},
            [&report](BatchAnswer answer) { report.add(std::move(answer)); });
  report.finish();
  return report.status();
}

}  // namespace tamzo::command
