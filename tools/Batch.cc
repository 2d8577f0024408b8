#include "tools/Batch.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "tamzo/vast/ErrorCodes.h"
#include "tools/BatchLine.h"
#include "tools/CommandError.h"
#include "tools/Input.h"
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

/// Gives out one piece of work after another, and nothing at the end.
using Work = std::function<BatchAnswer()>;
using Source = std::function<std::optional<Work>()>;

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

// A folder that cannot be listed is answered in its place, as a file that cannot be read is.
Source sourceOfPaths(const std::vector<std::string>& paths, std::size_t& total) {
  auto work = std::make_shared<std::deque<Work>>();
  for (const std::string& path : paths) {
    try {
      for (const std::string& file : filesOf(path)) {
        work->push_back([file] { return answerFile(file); });
      }
    } catch (const CommandError& error) {
      work->push_back([path, why = std::string(error.what())] { return refuse(idOf(path), why); });
    }
  }
  total = work->size();
  return [work]() -> std::optional<Work> {
    if (work->empty()) {
      return std::nullopt;
    }
    Work next = std::move(work->front());
    work->pop_front();
    return next;
  };
}

bool isBlank(std::string_view line) {
  return line.find_first_not_of(" \t\r\n\v\f") == std::string_view::npos;
}

Source sourceOfLines() {
  std::ios::sync_with_stdio(false);
  auto number = std::make_shared<std::size_t>(0);
  std::optional<Work> failure = Work([] { return refuse(kNoId, "standard input cannot be read"); });
  return [number, failure]() mutable -> std::optional<Work> {
    std::string line;
    while (std::getline(std::cin, line)) {
      if (++*number == 1) {
        line = withoutByteOrderMark(std::move(line));
      }
      if (!isBlank(line)) {
        return [line = std::move(line), at = *number] {
          BatchAnswer answer = answerBatchLine(line);
          if (!answer.problem.empty()) {
            answer.problem = fmt::format("line {}: {}", at, answer.problem);
          }
          return answer;
        };
      }
    }
    // A read error ends the stream as its end does, but is no end to keep quiet about.
    return std::cin.bad() ? std::exchange(failure, std::nullopt) : std::nullopt;
  };
}

/// Works on several threads and gives the answers out in the order of the input. At most a few
/// pieces a thread are under way at once, so a long stream takes no more memory than a short one.
class OrderedWork {
 public:
  OrderedWork(Source source, unsigned threads)
      : source_(std::move(source)), window_(std::size_t{threads} * 4) {
    reader_ = std::thread([this] { read(); });
    for (unsigned i = 0; i < threads; ++i) {
      workers_.emplace_back([this] { work(); });
    }
  }

  OrderedWork(const OrderedWork&) = delete;
  OrderedWork& operator=(const OrderedWork&) = delete;

  ~OrderedWork() {
    {
      const std::lock_guard lock(mutex_);
      isStopped_ = true;
    }
    changed_.notify_all();
    reader_.join();
    for (std::thread& worker : workers_) {
      worker.join();
    }
  }

  /// The next answer in order; nothing at the end.
  std::optional<BatchAnswer> next() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] {
      return (!jobs_.empty() && jobs_.front()->answer) || (jobs_.empty() && isRead_);
    });
    if (jobs_.empty()) {
      return std::nullopt;
    }
    BatchAnswer answer = std::move(*jobs_.front()->answer);
    jobs_.pop_front();
    lock.unlock();
    changed_.notify_all();
    return answer;
  }

 private:
  struct Job {
    Work work;
    std::optional<BatchAnswer> answer;
    bool isTaken = false;
  };

  void read() {
    for (;;) {
      std::optional<Work> work = source_();
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return isStopped_ || jobs_.size() < window_; });
      if (isStopped_ || !work) {
        isRead_ = true;
        lock.unlock();
        changed_.notify_all();
        return;
      }
      jobs_.push_back(std::make_shared<Job>(Job{std::move(*work), std::nullopt, false}));
      lock.unlock();
      changed_.notify_all();
    }
  }

  std::shared_ptr<Job> untaken() const {
    const auto found =
        std::find_if(jobs_.begin(), jobs_.end(), [](const auto& job) { return !job->isTaken; });
    return found == jobs_.end() ? nullptr : *found;
  }

  void work() {
    for (;;) {
      std::unique_lock lock(mutex_);
      std::shared_ptr<Job> job;
      changed_.wait(lock, [this, &job] {
        job = untaken();
        return isStopped_ || job != nullptr || isRead_;
      });
      if (isStopped_ || job == nullptr) {
        return;
      }
      job->isTaken = true;
      const Work task = std::move(job->work);
      lock.unlock();
      BatchAnswer answer = answerOf(task);
      lock.lock();
      job->answer = std::move(answer);
      lock.unlock();
      changed_.notify_all();
    }
  }

  static BatchAnswer answerOf(const Work& task) {
    try {
      return task();
    } catch (const std::exception& error) {
      return refuse(kNoId, error.what());
    }
  }

  Source source_;
  std::size_t window_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::shared_ptr<Job>> jobs_;
  bool isRead_ = false;
  bool isStopped_ = false;
  std::thread reader_;
  std::vector<std::thread> workers_;
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
      fmt::print(stderr, "\r\x1b[K");
      std::fflush(stderr);
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
      fmt::print(stderr, "\r{} responses", done_);
    } else {
      const std::size_t filled = done_ * kWidth / total_;
      fmt::print(stderr, "\r[{:<{}}] {}/{}", std::string(filled, '#'), kWidth, done_, total_);
    }
    std::fflush(stderr);
  }

  std::size_t total_;
  std::size_t done_ = 0;
  bool isShown_;
  Clock::time_point drawn_;
};

void printTable(const std::map<int, std::size_t>& counts, std::size_t unreadable) {
  fmt::print(stderr, "{:>9}  {:>5}  {}\n", "responses", "error", "meaning");
  for (const auto& [code, count] : counts) {
    const VastError* error = findVastError(code);
    fmt::print(stderr, "{:>9}  {:>5}  {}\n", count, code, error == nullptr ? "" : error->name);
  }
  if (unreadable > 0) {
    fmt::print(stderr, "{:>9}  {:>5}  {}\n", unreadable, "-", "could not be read");
  }
}

}  // namespace

int runBatch(const std::vector<std::string>& paths, unsigned threads,
             const std::string& outputPath) {
  std::size_t total = 0;
  Source source = paths.empty() ? sourceOfLines() : sourceOfPaths(paths, total);
  Output output(outputPath);
  Progress progress(total);
  std::map<int, std::size_t> counts;
  std::size_t unreadable = 0;
  {
    OrderedWork work(std::move(source), threads);
    while (std::optional<BatchAnswer> answer = work.next()) {
      answer->line += '\n';
      output.write(answer->line);
      if (answer->problem.empty()) {
        ++counts[answer->errorCode];
      } else {
        ++unreadable;
        progress.clear();
        complain(answer->problem);
      }
      progress.step();
    }
  }
  output.finish();
  progress.clear();
  printTable(counts, unreadable);
  if (unreadable > 0) {
    return kWrongUsage;
  }
  const bool allGood = counts.empty() || (counts.size() == 1 && counts.contains(kNoError));
  return allGood ? kAllPlayable : kSomeFailed;
}

}  // namespace tamzo::command
