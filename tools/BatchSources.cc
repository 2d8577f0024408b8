#include "tools/BatchSources.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <deque>
#include <exception>
#include <mutex>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "base/Utf8.h"
#include "tools/CommandError.h"
#include "tools/FolderListing.h"
#include "tools/IdSearch.h"
#include "tools/Input.h"
#include "tools/LineReader.h"
#include "tools/Response.h"

namespace tamzo::command {
namespace {

// What a URL counts for among files.
constexpr std::size_t kUsualResponse = 10'000;

// Work that fails has its answer too.
BatchAnswer answerOf(const std::string& id, const std::function<BatchAnswer()>& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return refuse(id, "out of memory");
  } catch (const std::exception& error) {
    return refuse(id, error.what());
  }
}

bool isBlank(std::string_view line) {
  return line.find_first_not_of(" \t\r\n\v\f") == std::string_view::npos;
}

bool looksLikeXml(std::string_view line) {
  const std::size_t first = line.find_first_not_of(" \t\r\n\v\f");
  return first != std::string_view::npos && line[first] == '<';
}

/// Where lines come from, for what is said of them. Answers under way outlive the source.
struct Origin {
  std::string name;
  bool isStandardInput;
  const AnswerForm& form;

  BatchAnswer named(std::size_t number, BatchAnswer answer) const {
    if (!answer.problem.empty()) {
      answer.problem =
          fmt::format("{}line {}: {}", isStandardInput ? "" : name + ": ", number, answer.problem);
    }
    return answer;
  }

  BatchAnswer refused(std::size_t number, const std::string& why,
                      const std::string& id = kNoId) const {
    return named(number, refuseLine(id, number, why));
  }

  BatchAnswer answered(std::size_t number, std::string_view line) const {
    try {
      return named(number, answerBatchLine(line, number, form));
    } catch (const std::bad_alloc&) {
      return refused(number, "out of memory");
    }
  }
};

/// A file that is open, or standard input for "-".
class InputFile {
 public:
  /// Throws CommandError when it cannot be opened.
  explicit InputFile(const std::string& path)
      : descriptor_(path == "-" ? STDIN_FILENO
                                : open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {
    if (descriptor_ == -1) {
      throw CommandError(std::strerror(errno));
    }
  }
  InputFile(InputFile&& other) noexcept
      : descriptor_(std::exchange(other.descriptor_, STDIN_FILENO)) {}
  InputFile& operator=(InputFile&&) = delete;
  ~InputFile() {
    if (descriptor_ > STDERR_FILENO) {
      close(descriptor_);
    }
  }

  int descriptor() const noexcept { return descriptor_; }

 private:
  int descriptor_;
};

/// The lines of a stream. One that memory does not hold is answered in its place, and so is an
/// error that ends them.
class LineSource {
 public:
  /// Throws CommandError when the system has no descriptor left.
  LineSource(InputFile file, Origin origin)
      : file_(std::move(file)),
        origin_(std::make_shared<const Origin>(std::move(origin))),
        lines_(file_.descriptor()) {}

  std::optional<Work> next() {
    try {
      return isAtEnd_ ? std::nullopt : nextLine();
    } catch (const CommandError& error) {
      isAtEnd_ = true;
      const std::string why = origin_->isStandardInput ? origin_->name + " cannot be read"
                                                       : origin_->name + ": " + error.what();
      return Work{[why] { return refuse(kNoId, why); }};
    }
  }

  bool isReady() { return isAtEnd_ || lines_.isReady(); }
  void stop() noexcept { lines_.stop(); }

 private:
  std::optional<Work> nextLine() {
    if (!pending_ && !findLine()) {
      isAtEnd_ = true;
      return std::nullopt;
    }
    Work work = workOf(*pending_, pendingBytes_);
    pending_.reset();
    return work;
  }

  // The next line that is not blank, which is kept until there is memory for the work on it.
  bool findLine() {
    pendingBytes_ = 0;
    while (std::optional<Line> line = lines_.next()) {
      pendingBytes_ += line->text.size() + 1;
      if (++number_ == 1) {
        line->text.remove_prefix(byteOrderMarkOf(line->text));
      }
      if (!line->isWhole || !isBlank(line->text)) {
        pending_ = std::move(line);
        return true;
      }
    }
    return false;
  }

  Work workOf(const Line& line, std::size_t inputBytes) {
    const bool isXml = isFirst_ && looksLikeXml(line.text);
    if (isXml) {
      isAtEnd_ = true;
      return refusal("is XML, not JSON: \"tamzo-vast parse " +
                     (origin_->isStandardInput ? "-" : origin_->name) +
                     "\" takes a response as it is");
    }
    if (!line.isWhole) {
      return refusal("out of memory", searchId(line.text));
    }
    isFirst_ = false;
    const std::size_t held = line.text.size();
    return Work{[origin = origin_, line, number = number_, inputBytes] {
                  BatchAnswer answer = origin->answered(number, line.text);
                  answer.inputBytes = inputBytes;
                  return answer;
                },
                held};
  }

  Work refusal(const std::string& why, const std::string& id = kNoId) const {
    return Work{
        [origin = origin_, number = number_, why, id] { return origin->refused(number, why, id); }};
  }

  InputFile file_;
  std::shared_ptr<const Origin> origin_;
  LineReader lines_;
  std::optional<Line> pending_;
  std::size_t pendingBytes_ = 0;
  std::size_t number_ = 0;
  bool isFirst_ = true;
  bool isAtEnd_ = false;
};

// ---- What a path names ---------------------------------------------------------------------

enum class Kind { file, url, lines, refused };

struct Item {
  Kind kind;
  std::string path;
  std::string problem;  // why it is refused
};

bool isFolder(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void addFolder(std::deque<Item>& items, const std::string& path, bool isRecursive) {
  for (ListedPath& listed : listXmlFiles(path, isRecursive)) {
    const bool isFile = listed.problem.empty();
    std::string problem = isFile ? "" : listed.path + ": " + listed.problem;
    items.push_back(
        {isFile ? Kind::file : Kind::refused, std::move(listed.path), std::move(problem)});
  }
}

// A file may well be called "http.xml".
bool isUrl(const std::string& path) {
  return path.starts_with("http://") || path.starts_with("https://");
}

std::deque<Item> itemsOf(const std::vector<std::string>& paths, bool isRecursive) {
  std::deque<Item> items;
  for (const std::string& path : paths) {
    if (path.empty()) {
      items.push_back({Kind::refused, path, "a PATH is empty"});
    } else if (isUrl(path)) {
      items.push_back({Kind::url, path, ""});
    } else if (isFolder(path)) {
      addFolder(items, path, isRecursive);
    } else {
      const bool hasLines = path == "-" || path.ends_with(".jsonl");
      items.push_back({hasLines ? Kind::lines : Kind::file, path, ""});
    }
  }
  return items;
}

std::size_t bytesOf(const Item& item) {
  struct stat status {};
  switch (item.kind) {
    case Kind::url:
      return kUsualResponse;
    case Kind::refused:
      return 0;
    default:
      const bool isThere = item.path == "-" ? fstat(STDIN_FILENO, &status) == 0
                                            : stat(item.path.c_str(), &status) == 0;
      return isThere && S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
  }
}

BatchAnswer answerItem(const Item& item, const AnswerForm& form) {
  const std::string id = idOf(item.path);
  return answerOf(id, [&] {
    if (item.kind == Kind::refused) {
      return refuse(id, item.problem);
    }
    const Text response = item.kind == Kind::url ? urlOf(item.path) : Text(readInput(item.path));
    BatchAnswer answer = answerResponse(id, response, form);
    answer.inputBytes = item.kind == Kind::url ? kUsualResponse : response.view().size();
    return answer;
  });
}

class PathSource : public BatchSource {
 public:
  PathSource(std::deque<Item> items, const AnswerForm& form)
      : items_(std::move(items)), form_(form) {}

  BatchSize size() const override {
    BatchSize size;
    bool isKnown = true;
    for (const Item& item : items_) {
      size.bytes += bytesOf(item);
      isKnown = isKnown && item.kind != Kind::lines;
    }
    size.answers = isKnown ? items_.size() : 0;
    return size;
  }

  std::optional<Work> next() override {
    for (;;) {
      if (lines_) {
        if (std::optional<Work> work = lines_->next()) {
          return work;
        }
        setLines(nullptr);
      }
      if (items_.empty() || isStopped_) {
        return std::nullopt;
      }
      // It goes once there is memory for the work on it.
      const Item& item = items_.front();
      std::optional<Work> work =
          item.kind == Kind::lines ? open(item)
                                   : Work{[item, &form = form_] { return answerItem(item, form); }};
      items_.pop_front();
      if (work) {
        return work;
      }
    }
  }

  bool isReady() override {
    return lines_ ? lines_->isReady() : items_.empty() || items_.front().kind != Kind::lines;
  }

  void stop() noexcept override {
    const std::lock_guard lock(mutex_);
    isStopped_ = true;
    if (lines_) {
      lines_->stop();
    }
  }

 private:
  // The next lines are those of the item; or work that says why not.
  std::optional<Work> open(const Item& item) {
    const bool isStandardInput = item.path == "-";
    const std::string name = isStandardInput ? "standard input" : item.path;
    try {
      setLines(
          std::make_unique<LineSource>(InputFile(item.path), Origin{name, isStandardInput, form_}));
    } catch (const CommandError& error) {
      const std::string why = name + ": " + error.what();
      return Work{[id = idOf(item.path), why] { return refuse(id, why); }};
    }
    return std::nullopt;
  }

  void setLines(std::unique_ptr<LineSource> lines) {
    const std::lock_guard lock(mutex_);
    lines_ = std::move(lines);
    if (lines_ && isStopped_) {
      lines_->stop();
    }
  }

  std::deque<Item> items_;
  const AnswerForm& form_;
  std::mutex mutex_;  // of lines_ where another thread stops them
  std::unique_ptr<LineSource> lines_;
  std::atomic<bool> isStopped_{false};
};

}  // namespace

std::unique_ptr<BatchSource> sourceOf(const std::vector<std::string>& paths, bool isRecursive,
                                      const AnswerForm& form) {
  const std::vector<std::string> standardInput{"-"};
  return std::make_unique<PathSource>(itemsOf(paths.empty() ? standardInput : paths, isRecursive),
                                      form);
}

}  // namespace tamzo::command
