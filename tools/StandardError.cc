#include "tools/StandardError.h"

#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "tools/Printable.h"
#include "tools/Process.h"
#include "tools/Terminal.h"

namespace tamzo::command {
namespace {

constexpr std::string_view kErase = "\r\x1b[K";
constexpr auto kBetweenDrawings = std::chrono::milliseconds(100);

// Whoever writes to the terminal holds it. Never destroyed: a thread may still write at the end.
std::recursive_mutex& terminalMutex() {
  static auto* mutex = new std::recursive_mutex;
  return *mutex;
}

std::atomic<bool> isLineShown{false};

// Without the C library's buffer, so that all of it is out at once.
void writeAll(std::string_view text) noexcept {
  while (!text.empty()) {
    const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (!isPassing(STDERR_FILENO)) {
      return;
    }
  }
}

}  // namespace

void writeToStandardError(std::string_view text) noexcept {
  const StatusLine::Gap gap;
  writeAll(text);
}

void complain(std::string_view message) {
  const bool isSeen = isTerminal(STDERR_FILENO);
  writeToStandardError("tamzo-vast: " + (isSeen ? shownOnTerminal(message) : printable(message)) +
                       "\n");
}

void complainOfMemory() noexcept { writeToStandardError("tamzo-vast: out of memory\n"); }

void writeLogLine(std::string_view line) {
  const bool isSeen = isTerminal(STDERR_FILENO);
  writeToStandardError((isSeen ? linesShownOnTerminal(line, "  ") : std::string(line)) + "\n");
}

/// Draws the line until it is destroyed.
class StatusLine::Drawing {
 public:
  Drawing(std::function<std::string(std::size_t)> text, std::chrono::milliseconds delay)
      : text_(std::move(text)), delay_(delay), thread_([this] { run(); }) {}
  Drawing(const Drawing&) = delete;
  Drawing& operator=(const Drawing&) = delete;
  ~Drawing() {
    {
      const std::lock_guard lock(mutex_);
      isOver_ = true;
    }
    over_.notify_one();
    thread_.join();
  }

  void draw() const noexcept {
    try {
      const std::lock_guard terminal(terminalMutex());
      const std::size_t columns = terminalColumns(STDERR_FILENO);
      // The last column stays free: some terminals go on to the next line when it is filled.
      const std::string line =
          std::string(kErase) + cutInTheMiddle(text_(columns - 1), columns - 1);
      isLineShown = true;
      writeAll(line);
    } catch (const std::bad_alloc&) {
      return;
    }
  }

 private:
  void run() {
    std::unique_lock lock(mutex_);
    const auto isOver = [this] { return isOver_; };
    for (auto wait = delay_; !over_.wait_for(lock, wait, isOver); wait = kBetweenDrawings) {
      lock.unlock();
      draw();
      lock.lock();
    }
  }

  std::function<std::string(std::size_t)> text_;
  std::chrono::milliseconds delay_;
  std::mutex mutex_;
  std::condition_variable over_;
  bool isOver_ = false;
  std::thread thread_;
};

StatusLine::StatusLine(std::function<std::string(std::size_t)> text,
                       std::chrono::milliseconds delay) {
  if (!isPossible()) {
    return;
  }
  try {
    drawing_ = std::make_unique<Drawing>(std::move(text), delay);
  } catch (const std::system_error&) {
    return;  // no thread left for it
  }
}

StatusLine::~StatusLine() {
  drawing_.reset();
  const Gap gap;
}

void StatusLine::draw() noexcept {
  if (drawing_ != nullptr) {
    drawing_->draw();
  }
}

bool StatusLine::isPossible() noexcept { return isLivelyTerminal(STDERR_FILENO); }

StatusLine::Gap::Gap() noexcept {
  terminalMutex().lock();
  eraseAtTheEnd();
}

StatusLine::Gap::~Gap() { terminalMutex().unlock(); }

void StatusLine::eraseAtTheEnd() noexcept {
  if (isLineShown.exchange(false)) {
    writeAll(kErase);
  }
}

}  // namespace tamzo::command
