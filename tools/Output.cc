#include "tools/Output.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "tools/CommandError.h"
#include "tools/Process.h"

namespace tamzo::command {
namespace {

// Whoever has the other end may have made it one that does not wait.
bool isPassing(int descriptor) {
  if (errno == EAGAIN) {
    pollfd writable{descriptor, POLLOUT, 0};
    poll(&writable, 1, -1);
    return true;
  }
  return errno == EINTR;
}

}  // namespace

Output::~Output() {
  if (file_ != kNotOpen) {
    close(file_);
  }
}

void Output::write(std::string_view text) {
  const int to = descriptor();
  const WholeWrite whole;
  while (!text.empty()) {
    const ssize_t written = ::write(to, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (!isPassing(to)) {
      fail();
    }
  }
}

void Output::finish() {
  descriptor();
  if (file_ != kNotOpen && close(std::exchange(file_, kNotOpen)) != 0) {
    fail();
  }
}

bool Output::takesColours() const {
  return path_.empty() && std::getenv("NO_COLOR") == nullptr && isatty(STDOUT_FILENO) == 1;
}

int Output::descriptor() {
  if (path_.empty()) {
    return STDOUT_FILENO;
  }
  if (file_ == kNotOpen) {
    file_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file_ == kNotOpen) {
      fail();
    }
  }
  return file_;
}

void Output::fail() const {
  const int error = errno;
  if (error == EPIPE && path_.empty()) {
    endByBrokenPipe();
  }
  throw CommandError((path_.empty() ? "standard output" : path_) + ": " + std::strerror(error));
}

}  // namespace tamzo::command
