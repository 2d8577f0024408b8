#include "tools/Batch.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <exception>
#include <filesystem>
#include <map>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "tamzo/vast/ErrorCodes.h"
#include "tools/BatchLine.h"
#include "tools/CommandError.h"
#include "tools/Input.h"
#include "tools/LineReader.h"
#include "tools/OrderedAnswers.h"
#include "tools/Output.h"

namespace tamzo::command {
namespace {

BatchAnswer answerFile(const std::string& path) {
  const std::string id = idOf(path);
  if (path.empty()) {
    return refuse(id, "a PATH is empty");
  }
  try {
    return answerResponse(id, readInput(path));
  } catch (const CommandError& error) {
    return refuse(id, error.what());
  }
}

std::vector<std::string> filesOf(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (!fs::is_directory(path, error)) {
    return {path};
  }
  std::vector<std::string> files;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->path().extension() == ".xml" && !entry->is_directory(error)) {
      files.push_back(entry->path().string());
    }
  }
  if (error) {
    throw CommandError(path + ": " + error.message());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// Work that fails has its answer too.
BatchAnswer answerOf(const Work& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return refuse(kNoId, "out of memory");
  } catch (const std::exception& error) {
    return refuse(kNoId, error.what());
  }
}

/// The files that the paths name. A folder that cannot be listed is answered in its place, as a
/// file that cannot be read is.
class PathSource : public WorkSource {
 public:
  explicit PathSource(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
      try {
        for (const std::string& file : filesOf(path)) {
          work_.emplace_back([file] { return answerOf([&file] { return answerFile(file); }); });
        }
      } catch (const CommandError& error) {
        work_.emplace_back(
            [path, why = std::string(error.what())] { return refuse(idOf(path), why); });
      }
    }
  }

  std::size_t left() const { return work_.size(); }

  std::optional<Work> next() override {
    if (work_.empty()) {
      return std::nullopt;
    }
    Work next = std::move(work_.front());
    work_.pop_front();
    return next;
  }

 private:
  std::deque<Work> work_;
};

bool isBlank(std::string_view line) {
  return line.find_first_not_of(" \t\r\n\v\f") == std::string_view::npos;
}

BatchAnswer numbered(std::size_t line, BatchAnswer answer) {
  if (!answer.problem.empty()) {
    answer.problem = fmt::format("line {}: {}", line, answer.problem);
  }
  return answer;
}

/// The lines of standard input. One that memory does not hold is answered in its place, and so is
/// an error that ends them.
class LineSource : public WorkSource {
 public:
  std::optional<Work> next() override {
    try {
      return nextLine();
    } catch (const std::bad_alloc&) {
      return [at = number_] { return numbered(at, refuse(kNoId, "out of memory")); };
    } catch (const CommandError&) {
      isAtEnd_ = true;
      return [] { return refuse(kNoId, "standard input cannot be read"); };
    }
  }

  void stop() noexcept override { lines_.stop(); }

 private:
  std::optional<Work> nextLine() {
    while (!isAtEnd_) {
      ++number_;
      std::optional<std::string> line = lines_.next();
      if (!line) {
        break;
      }
      if (number_ == 1) {
        line = withoutByteOrderMark(std::move(*line));
      }
      if (!isBlank(*line)) {
        return [line = std::move(*line), at = number_] {
          return numbered(at, answerOf([&line] { return answerBatchLine(line); }));
        };
      }
    }
    return std::nullopt;
  }

  LineReader lines_{STDIN_FILENO};
  std::size_t number_ = 0;
  bool isAtEnd_ = false;
};

/// A bar on standard error, for a person who waits.
class Progress {
 public:
  explicit Progress(std::size_t total) : total_(total), isShown_(isatty(STDERR_FILENO) == 1) {
    draw();
  }

  void step() {
    ++done_;
    if (Clock::now() - drawn_ >= kBetweenDrawings) {
      draw();
    }
  }

  /// Makes room for a line of text, or for the end.
  void clear() const {
    if (isShown_) {
      writeToStandardError("\r\x1b[K");
    }
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr auto kBetweenDrawings = std::chrono::milliseconds(100);
  static constexpr std::size_t kWidth = 40;

  void draw() {
    if (!isShown_) {
      return;
    }
    drawn_ = Clock::now();
    if (total_ == 0) {
      writeToStandardError(fmt::format("\r{} responses", done_));
    } else {
      const std::size_t filled = done_ * kWidth / total_;
      writeToStandardError(
          fmt::format("\r[{:<{}}] {}/{}", std::string(filled, '#'), kWidth, done_, total_));
    }
  }

  std::size_t total_;
  std::size_t done_ = 0;
  bool isShown_;
  Clock::time_point drawn_;
};

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

/// Where the answers go, and what is counted of them.
class BatchReport {
 public:
  BatchReport(const std::string& outputPath, std::size_t total)
      : output_(outputPath), progress_(total) {}

  void add(BatchAnswer answer) {
    answer.line += '\n';
    output_.write(answer.line);
    if (answer.problem.empty()) {
      ++counts_[answer.errorCode];
    } else {
      ++unreadable_;
      progress_.clear();
      complain(answer.problem);
    }
    progress_.step();
  }

  void finish() {
    output_.finish();
    progress_.clear();
    writeToStandardError(tableOf(counts_, unreadable_));
  }

  int status() const {
    if (unreadable_ > 0) {
      return kWrongUsage;
    }
    const bool allGood = counts_.empty() || (counts_.size() == 1 && counts_.contains(kNoError));
    return allGood ? kAllPlayable : kSomeFailed;
  }

 private:
  Output output_;
  Progress progress_;
  std::map<int, std::size_t> counts_;
  std::size_t unreadable_ = 0;
};

int report(WorkSource& source, std::size_t total, unsigned threads, const std::string& outputPath) {
  BatchReport report(outputPath, total);
  answerInOrder(source, threads, [&report](BatchAnswer answer) { report.add(std::move(answer)); });
  report.finish();
  return report.status();
}

}  // namespace

int runBatch(const std::vector<std::string>& paths, unsigned threads,
             const std::string& outputPath) {
  if (paths.empty()) {
    LineSource lines;
    return report(lines, 0, threads, outputPath);
  }
  PathSource files(paths);
  return report(files, files.left(), threads, outputPath);
}

}  // namespace tamzo::command
