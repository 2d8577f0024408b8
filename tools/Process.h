#pragma once

#include <cstddef>
#include <optional>

namespace tamzo::command {

/// Puts something in the place of a standard stream that came closed, so that no file opened later
/// is taken for it. Reading and writing such a stream fail as before.
void holdStandardStreams();

/// From here on a closed pipe and a file that has its largest size are errors of the write alone,
/// and WholeWrite holds off the signals that end the command. For the start of the program.
void handleSignals();

/// Bytes of memory that are free, where the address space or the data is limited.
std::optional<std::size_t> freeMemory() noexcept;

/// Ends the program as a closed pipe does where nobody asked for anything else; returns where
/// whoever started it did.
void endByBrokenPipe();

/// Whether a write that has failed, as errno tells, may be tried again. Waits where whoever has the
/// other end has made it one that does not wait.
bool isPassing(int descriptor) noexcept;

/// While one stands, SIGINT, SIGTERM and SIGHUP wait until it goes, so that they leave no half of a
/// line behind. A second signal of the same kind does not wait. One at a time.
class WholeWrite {
 public:
  WholeWrite();
  WholeWrite(const WholeWrite&) = delete;
  WholeWrite& operator=(const WholeWrite&) = delete;
  ~WholeWrite();
};

}  // namespace tamzo::command
