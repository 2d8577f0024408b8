#include "tools/LineReader.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include "tools/CommandError.h"

namespace tamzo::command {
namespace {

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

std::optional<std::string> LineReader::next() {
  std::string line;
  try {
    do {
      line.append(unreadPart());
      if (endPart()) {
        return line;
      }
    } while (waitForInput() && readBlock());
  } catch (const std::bad_alloc&) {
    skipLine();
    throw;
  }
  const bool hasLast = !line.empty() && !isStopped_;
  return hasLast ? std::optional(std::move(line)) : std::nullopt;
}

void LineReader::stop() noexcept {
  while (write(stopPipe_[1], "", 1) < 0 && errno == EINTR) {
  }
}

void LineReader::skipLine() {
  while (!endPart() && waitForInput() && readBlock()) {
  }
}

// What the block still has of the line.
std::string_view LineReader::unreadPart() const {
  const std::string_view unread(block_.data() + begin_, end_ - begin_);
  return unread.substr(0, unread.find('\n'));
}

// Passes over that part, and over the line break if one follows, which ends the line.
bool LineReader::endPart() {
  begin_ += unreadPart().size();
  const bool isLineBreak = begin_ < end_;
  begin_ += isLineBreak ? 1 : 0;
  return isLineBreak;
}

// False when stopped.
bool LineReader::waitForInput() {
  std::array<pollfd, 2> awaited{{{descriptor_, POLLIN, 0}, {stopPipe_[0], POLLIN, 0}}};
  while (poll(awaited.data(), awaited.size(), -1) < 0) {
    if (errno != EINTR && errno != EAGAIN) {
      fail();
    }
  }
  isStopped_ = awaited[1].revents != 0;
  return !isStopped_;
}

// False at the end. What is not there after all, as another reader may have taken it, makes an
// empty block.
bool LineReader::readBlock() {
  const ssize_t count = read(descriptor_, block_.data(), block_.size());
  if (count < 0 && errno != EINTR && errno != EAGAIN) {
    fail();
  }
  begin_ = 0;
  end_ = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  return count != 0;
}

}  // namespace tamzo::command
