#include "tools/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <initializer_list>

#include "tools/StandardError.h"

namespace tamzo::command {
namespace {

// Who writes sets the first and reads the second, who gets a signal the other way round: in one
// order for all threads, so that one of the two sees the other.
std::atomic<bool> isWriting{false};
std::atomic<int> awaited{0};
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

bool wasPipeIgnored = false;

void endIfAwaited() {
  if (const int signal = awaited; signal != 0) {
    StatusLine::eraseAtTheEnd();
    raise(signal);  // by now it has its default effect again
  }
}

extern "C" void onEndingSignal(int signal) {
  awaited = signal;
  if (!isWriting) {
    endIfAwaited();
  }
}

bool isIgnored(int signal) {
  struct sigaction current {};
  return sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_IGN;
}

struct Memory {
  std::size_t addressSpace = 0;
  std::size_t data = 0;  // what the program has for itself alone, its stack included
};

// Bytes that are in use; 0 where the system does not tell. Takes no memory.
Memory usedMemory() noexcept {
  const int file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
  if (file == -1) {
    return {};
  }
  std::array<char, 128> text{};
  const ssize_t length = read(file, text.data(), text.size());
  close(file);
  constexpr std::size_t kData = 5;
  std::array<std::size_t, kData + 1> pages{};
  const char* const end = text.data() + std::max<ssize_t>(length, 0);
  const char* at = text.data();
  for (std::size_t& each : pages) {
    at = std::find_if(at, end, [](char c) { return c != ' '; });
    at = std::from_chars(at, end, each).ptr;
  }
  const auto pageBytes = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  return {pages[0] * pageBytes, pages[kData] * pageBytes};
}

// What a limit leaves of itself.
std::optional<std::size_t> restOf(int resource, std::size_t used) noexcept {
  rlimit limit{};
  if (getrlimit(static_cast<decltype(RLIMIT_AS)>(resource), &limit) != 0 ||
      limit.rlim_cur == RLIM_INFINITY) {
    return std::nullopt;
  }
  return limit.rlim_cur > used ? limit.rlim_cur - used : 0;
}

}  // namespace

void holdStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) == -1 && errno == EBADF) {
      // The lowest number that is free is this one. It is opened for what it is not used for.
      open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

void handleSignals() {
  wasPipeIgnored = isIgnored(SIGPIPE);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  struct sigaction action {};
  action.sa_handler = onEndingSignal;
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER | SA_RESTART);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    if (!isIgnored(signal)) {  // as nohup has it
      sigaction(signal, &action, nullptr);
    }
  }
}

std::optional<std::size_t> freeMemory() noexcept {
  const Memory used = usedMemory();
  const auto addressSpace = restOf(RLIMIT_AS, used.addressSpace);
  const auto data = restOf(RLIMIT_DATA, used.data);
  if (addressSpace && data) {
    return std::min(*addressSpace, *data);
  }
  return addressSpace ? addressSpace : data;
}

void endByBrokenPipe() {
  if (!wasPipeIgnored) {
    std::signal(SIGPIPE, SIG_DFL);
    raise(SIGPIPE);
  }
}

bool isPassing(int descriptor) noexcept {
  if (errno == EAGAIN) {
    pollfd writable{descriptor, POLLOUT, 0};
    poll(&writable, 1, -1);
    return true;
  }
  return errno == EINTR;
}

WholeWrite::WholeWrite() {
  isWriting = true;
  endIfAwaited();
}

WholeWrite::~WholeWrite() {
  isWriting = false;
  endIfAwaited();
}

}  // namespace tamzo::command
