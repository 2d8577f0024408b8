#include "tools/Batch.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "explain/Rules.h"
#include "tamzo/vast/ErrorCodes.h"
#include "tools/AnswerQueue.h"
#include "tools/BatchIndex.h"
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

// How many responses each finding was made in, and how often.
struct FindingCount {
  std::size_t responses = 0;
  std::size_t findings = 0;
};
using FindingCounts = std::map<std::string_view, FindingCount>;

std::string tableOf(const FindingCounts& counts) {
  std::string table = fmt::format("\n{:>9}  {:>8}  {}\n", "responses", "findings", "finding");
  for (const explain::Rule& rule : explain::rules()) {
    if (const auto count = counts.find(rule.id); count != counts.end()) {
      table += fmt::format("{:>9}  {:>8}  {} ({})\n", count->second.responses,
                           count->second.findings, rule.id, nameOf(rule.severity));
    }
  }
  return counts.empty() ? "" : table;
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
        progress_(isBarWanted(request), [&source] { return source.size(); }) {
    if (!request.reportFolder.empty()) {
      index_.emplace(request.reportFolder);
    }
  }

  void add(BatchAnswer answer) {
    if (!request_.isSummary && !answer.isLeftOut) {
      answer.line += '\n';
      output_.writeJson(answer.line);
    }
    if (index_) {
      index_->add(answer);
    }
    for (const auto& [id, count] : answer.findings) {
      ++findings_[id].responses;
      findings_[id].findings += count;
    }
    if (answer.problem.empty()) {
      ++counts_[answer.errorCode];
    } else {
      ++unreadable_;
      complainOf(answer.problem);
    }
    progress_.step(answer.inputBytes);
  }

  void finish() {
    progress_.finish();
    const std::string table = tableOf(counts_, unreadable_) + tableOf(findings_);
    if (request_.isSummary) {
      output_.write(table);
    }
    output_.finish();
    if (index_) {
      index_->finish();
    }
    if (!request_.isSummary && !request_.isQuiet) {
      writeToStandardError(table);
    }
  }

  int status() const {
    if (unreadable_ > 0) {
      return kWrongUsage;
    }
    const auto& failOn = request_.failOn;
    const bool hasFailed = std::any_of(failOn.begin(), failOn.end(), [this](const std::string& id) {
      return findings_.contains(id);
    });
    if (hasFailed) {
      return kSomeFailed;
    }
    const bool allGood = counts_.empty() || (counts_.size() == 1 && counts_.contains(kNoError));
    return allGood ? kAllPlayable : kSomeFailed;
  }

 private:
  static void complainOf(const std::string& problem) {
    try {
      complain(problem);
    } catch (const std::bad_alloc&) {
      complainOfMemory();
    }
  }

  const BatchRequest& request_;
  Output output_;
  Progress progress_;
  std::map<int, std::size_t> counts_;
  FindingCounts findings_;
  std::optional<BatchIndex> index_;
  std::size_t unreadable_ = 0;
};

// A thread takes its stack and memory for what it does: as many as leave most of the rest free.
AnswerPlan planFor(const BatchRequest& request) {
  AnswerPlan plan;
  plan.threads = request.threads;
  plan.inOrder = request.inOrder;
  if (const auto memory = freeMemory()) {
    constexpr std::size_t kForAThread = std::size_t{32} << 20U;
    constexpr std::size_t kPartForAnswers = 16;
    plan.threads =
        static_cast<unsigned>(std::clamp<std::size_t>(*memory / kForAThread, 1, request.threads));
    plan.windowBytes = std::min(plan.windowBytes, *memory / kPartForAnswers);
  }
  return plan;
}

}  // namespace

int runBatch(const BatchRequest& request) {
  AnswerForm form = request.form;
  form.hasRecord = !request.isSummary;
  form.countsFindings = form.hasExplanation || !form.only.empty() || !request.failOn.empty() ||
                        !request.reportFolder.empty();
  form.hasReport = !request.reportFolder.empty();
  const auto source = sourceOf(request.paths, request.isRecursive, form);
  BatchReport report(request, *source);
  answerAll(*source, planFor(request),
            [&report](BatchAnswer answer) { report.add(std::move(answer)); });
  report.finish();
  return report.status();
}

}  // namespace tamzo::command
