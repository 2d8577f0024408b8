#include "tools/LineReader.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include "tools/CommandError.h"

namespace tamzo::command {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18U;
constexpr std::size_t kLeastRoom = std::size_t{1} << 14U;
constexpr std::size_t kNone = std::string_view::npos;
// How much is taken ahead of the call that asks for it.
constexpr std::size_t kMostAhead = std::size_t{1} << 18U;
// How much of a line is given out that memory does not hold.
constexpr std::size_t kBeginning = 4096;

[[noreturn]] void fail() { throw CommandError(std::strerror(errno)); }

}  // namespace

LineReader::LineReader(int descriptor) : descriptor_(descriptor) {
  if (pipe(stopPipe_.data()) != 0) {
    fail();
  }
}

LineReader::~LineReader() {
  close(stopPipe_[0]);
  close(stopPipe_[1]);
}

std::optional<Line> LineReader::next() {
  try {
    std::size_t end = findBreak();
    while (end == kNone && fill(Waiting::allowed)) {
      end = findBreak();
    }
    const bool hasLast = begin_ < end_ && !isStopped_;
    if (end == kNone && !hasLast) {
      return std::nullopt;
    }
    return take(std::min(end, end_));
  } catch (const std::bad_alloc&) {
    if (end_ - begin_ < kBlock) {
      throw;  // no long line; there may be room for it later
    }
    return dropLongLine();
  }
}

bool LineReader::isReady() {
  try {
    while (findBreak() == kNone) {
      if (end_ - begin_ >= kMostAhead || !fill(Waiting::forbidden)) {
        return isAtEnd_ || isStopped_;
      }
    }
  } catch (const std::bad_alloc&) {
    return false;  // next() answers for it
  }
  return true;
}

void LineReader::stop() noexcept {
  while (write(stopPipe_[1], "", 1) < 0 && errno == EINTR) {
  }
}

std::size_t LineReader::findBreak() {
  const std::size_t at = std::string_view(block_.get(), end_).find('\n', searched_);
  searched_ = std::min(at, end_);
  return at;
}

// False at the end, when stopped, and where nothing has come and waiting is not allowed.
bool LineReader::fill(Waiting waiting) {
  if (isAtEnd_ || isStopped_ || !isReadable(waiting)) {
    return false;
  }
  makeRoom();
  const ssize_t count = read(descriptor_, block_.get() + end_, size_ - end_);
  if (count < 0 && errno != EINTR && errno != EAGAIN) {
    fail();
  }
  isAtEnd_ = count == 0;
  end_ += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  return !isAtEnd_;
}

// What another reader has taken meanwhile makes an empty block.
bool LineReader::isReadable(Waiting waiting) {
  std::array<pollfd, 2> awaited{{{descriptor_, POLLIN, 0}, {stopPipe_[0], POLLIN, 0}}};
  int ready = 0;
  while ((ready = poll(awaited.data(), awaited.size(), waiting == Waiting::allowed ? -1 : 0)) < 0) {
    if (errno != EINTR && errno != EAGAIN) {
      fail();
    }
  }
  isStopped_ = awaited[1].revents != 0;
  return ready > 0 && !isStopped_;
}

// What was given out stays where it is: what is left of a block begins the next one.
void LineReader::makeRoom() {
  if (size_ - end_ >= kLeastRoom) {
    return;
  }
  const std::size_t left = end_ - begin_;
  const std::size_t size = std::max(kBlock, left * 2);
  std::shared_ptr<char[]> block(new char[size]);
  std::copy_n(block_.get() + begin_, left, block.get());
  block_ = std::move(block);
  size_ = size;
  searched_ -= begin_;
  begin_ = 0;
  end_ = left;
}

void LineReader::forget() noexcept {
  block_.reset();
  size_ = begin_ = end_ = searched_ = 0;
}

Line LineReader::take(std::size_t end) {
  Line line{std::string_view(block_.get() + begin_, end - begin_), block_, true};
  begin_ = std::min(end + 1, end_);
  searched_ = begin_;
  return line;
}

Line LineReader::dropLongLine() {
  Line line{{}, nullptr, false};
  try {
    const std::size_t length = std::min(kBeginning, end_ - begin_);
    const std::shared_ptr<char[]> block(new char[length]);
    std::copy_n(block_.get() + begin_, length, block.get());
    line = {{block.get(), length}, block, false};
  } catch (const std::bad_alloc&) {
    line.isWhole = false;  // of which then nothing is known
  }
  skipLine();
  return line;
}

void LineReader::skipLine() {
  std::size_t end = findBreak();
  while (end == kNone) {
    forget();
    if (!fill(Waiting::allowed)) {
      return;
    }
    end = findBreak();
  }
  begin_ = end + 1;
  searched_ = begin_;
}

}  // namespace tamzo::command
