#include "tools/Output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "tools/CommandError.h"
#include "tools/Printable.h"
#include "tools/Process.h"
#include "tools/StandardError.h"
#include "tools/Terminal.h"

namespace tamzo::command {
namespace {

bool isTerminalFile(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISCHR(status.st_mode)) {
    return false;
  }
  const int file = open(path.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  const bool is = file != -1 && isTerminal(file);
  if (file != -1) {
    close(file);
  }
  return is;
}

}  // namespace

Output::Output(std::string path)
    : path_(std::move(path)),
      isTerminal_(path_.empty() ? command::isTerminal(STDOUT_FILENO) : isTerminalFile(path_)) {}

Output::~Output() {
  if (file_ != kNotOpen) {
    close(file_);
  }
}

void Output::write(std::string_view text) {
  if (isTerminal_) {
    const StatusLine::Gap gap;
    writeAll(text);
  } else {
    writeAll(text);
  }
}

void Output::writeJson(std::string_view json) {
  if (isTerminal_) {
    write(jsonShownOnTerminal(json));
  } else {
    write(json);
  }
}

void Output::writeLines(std::string_view text) {
  if (isTerminal_) {
    write(linesShownOnTerminal(text));
  } else {
    write(text);
  }
}

void Output::writeAll(std::string_view text) {
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

std::size_t Output::columns() const noexcept {
  return terminalColumns(file_ == kNotOpen ? STDOUT_FILENO : file_);
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
