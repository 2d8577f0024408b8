#include "tests/support/RunningCommand.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <utility>

#include "tests/support/Paths.h"

namespace tamzo::testing {
namespace {

constexpr int kGoodTime = 30'000;

struct Ends {
  int ours = -1;
  int theirs = -1;
};

// A pipe, or a file that is theirs alone.
Ends open(const std::string& file, int flags) {
  if (!file.empty()) {
    return {-1, ::open(file.c_str(), flags | O_CLOEXEC, 0600)};
  }
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  return flags == O_RDONLY ? Ends{ends[1], ends[0]} : Ends{ends[0], ends[1]};
}

void closeIfOpen(int& descriptor) {
  if (descriptor != -1) {
    close(std::exchange(descriptor, -1));
  }
}

struct Terminal {
  int ours = -1;
  int theirs = -1;
};

// One that hands on what is written as it is, and does not repeat what is typed.
Terminal openTerminal(unsigned short columns) {
  Terminal terminal;
  const winsize size{24, columns, 0, 0};
  if (openpty(&terminal.ours, &terminal.theirs, nullptr, nullptr, &size) != 0) {
    throw std::runtime_error("no terminal");
  }
  termios settings{};
  tcgetattr(terminal.theirs, &settings);
  settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
  settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  tcsetattr(terminal.theirs, TCSANOW, &settings);
  fcntl(terminal.ours, F_SETFD, FD_CLOEXEC);
  return terminal;
}

int statusOf(int waited) {
  return WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
}

}  // namespace

RunningCommand::RunningCommand(const std::vector<std::string>& arguments, const Streams& streams) {
  std::signal(SIGPIPE, SIG_IGN);  // a command that has ended reads nothing, which tests look into
  Ends in = open(streams.inputFile, O_RDONLY);
  Ends out = open(streams.outputFile, O_WRONLY | O_CREAT | O_TRUNC);
  Ends error = open(streams.errorFile, O_WRONLY | O_CREAT | O_TRUNC);
  Terminal terminal;
  if (!streams.onTerminal.empty()) {
    terminal = openTerminal(streams.columns);
  }
  const auto theirs = [&](char which, int other) {
    return streams.onTerminal.find(which) == std::string::npos ? other : terminal.theirs;
  };
  std::vector<char*> pointers{const_cast<char*>(kCommand)};
  for (const std::string& argument : arguments) {
    pointers.push_back(const_cast<char*>(argument.c_str()));
  }
  pointers.push_back(nullptr);
  child_ = fork();
  if (child_ == 0) {
    if (terminal.theirs != -1) {
      setsid();
      ioctl(terminal.theirs, TIOCSCTTY, 0);
    }
    dup2(theirs('i', in.theirs), STDIN_FILENO);
    dup2(theirs('o', out.theirs), STDOUT_FILENO);
    dup2(theirs('e', error.theirs), STDERR_FILENO);
    // A run of the tests in the background may ignore some, which a child would too.
    for (const int signal : {SIGPIPE, SIGINT, SIGTERM, SIGHUP}) {
      std::signal(signal, SIG_DFL);
    }
    streams.inChild();
    execv(kCommand, pointers.data());
    _exit(127);
  }
  for (int end : {in.theirs, out.theirs, error.theirs, terminal.theirs}) {
    closeIfOpen(end);
  }
  closeIfOpen(error.ours);
  input_ = in.ours;
  output_ = out.ours;
  terminal_ = terminal.ours;
}

RunningCommand::~RunningCommand() {
  closeInput();
  closeOutput();
  closeIfOpen(terminal_);
  if (child_ != -1) {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }
}

void RunningCommand::write(const std::string& text) {
  for (std::size_t at = 0; at < text.size();) {
    const ssize_t written =
        ::write(terminal_ == -1 ? input_ : terminal_, text.data() + at, text.size() - at);
    if (written < 0) {
      return;
    }
    at += static_cast<std::size_t>(written);
  }
}

void RunningCommand::closeInput() { closeIfOpen(input_); }

void RunningCommand::closeOutput() { closeIfOpen(output_); }

std::optional<std::string> RunningCommand::readLine() {
  std::size_t searched = 0;
  for (;;) {
    const std::size_t end = unread_.find('\n', searched);
    if (end != std::string::npos) {
      std::string line = unread_.substr(0, end);
      unread_.erase(0, end + 1);
      return line;
    }
    searched = unread_.size();
    if (!fill()) {
      return std::nullopt;
    }
  }
}

std::string RunningCommand::readAll() {
  while (fill()) {
  }
  return std::exchange(unread_, "");
}

std::string RunningCommand::readTerminal(const std::string& awaited) {
  while ((awaited.empty() || unreadTerminal_.find(awaited) == std::string::npos) &&
         fill(terminal_, unreadTerminal_)) {
  }
  return std::exchange(unreadTerminal_, "");
}

void RunningCommand::signal(int number) const { kill(child_, number); }

int RunningCommand::wait(int milliseconds) {
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  int waited = 0;
  while (waitpid(child_, &waited, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > until) {
      return -1;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  child_ = -1;
  return statusOf(waited);
}

// Takes what has come; false at the end, and when nothing comes.
bool RunningCommand::fill(int from, std::string& unread) {
  pollfd readable{from, POLLIN, 0};
  if (poll(&readable, 1, kGoodTime) != 1) {
    return false;
  }
  std::array<char, std::size_t{1} << 16U> block;
  const ssize_t count = read(from, block.data(), block.size());
  if (count < 0 && errno == EAGAIN) {
    return true;
  }
  unread.append(block.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return count > 0;
}

}  // namespace tamzo::testing
