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

constexpr std::size_t kBlock = std::size_t{1} << 16U;
constexpr std::size_t kMostKept = std::size_t{1} << 20U;
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
    while (end == std::string::npos && fill(Waiting::allowed)) {
      end = findBreak();
    }
    const bool hasLast = begin_ < end_ && !isStopped_;
    if (end == std::string::npos && !hasLast) {
      return std::nullopt;
    }
    return take(std::min(end, end_));
  } catch (const std::bad_alloc&) {
    return dropLongLine();
  }
}

bool LineReader::isReady() {
  try {
    while (findBreak() == std::string::npos) {
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
  const std::size_t at = std::string_view(buffer_.data(), end_).find('\n', searched_);
  searched_ = std::min(at, end_);
  return at;
}

// False at the end, when stopped, and where nothing has come and waiting is not allowed.
bool LineReader::fill(Waiting waiting) {
  if (isAtEnd_ || isStopped_ || !isReadable(waiting)) {
    return false;
  }
  makeRoom();
  const ssize_t count = read(descriptor_, buffer_.data() + end_, buffer_.size() - end_);
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

void LineReader::makeRoom() {
  if (begin_ == end_ && buffer_.size() > kMostKept) {
    forget();
  }
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    searched_ -= begin_;
    begin_ = 0;
  }
  if (buffer_.size() - end_ < kBlock) {
    buffer_.resize(std::max(buffer_.size() + kBlock, buffer_.size() * 2));
  }
}

void LineReader::forget() noexcept {
  std::string().swap(buffer_);
  begin_ = end_ = searched_ = 0;
}

Line LineReader::take(std::size_t end) {
  Line line{buffer_.substr(begin_, end - begin_)};
  begin_ = std::min(end + 1, end_);
  searched_ = begin_;
  return line;
}

Line LineReader::dropLongLine() {
  Line line{buffer_.substr(begin_, std::min(kBeginning, end_ - begin_)), false};
  std::size_t end = findBreak();
  while (end == std::string::npos) {
    forget();
    if (!fill(Waiting::allowed)) {
      return line;
    }
    end = findBreak();
  }
  begin_ = end + 1;
  searched_ = begin_;
  return line;
}

}  // namespace tamzo::command
