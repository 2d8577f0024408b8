#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace tamzo::command {

// Exit statuses of the command.
constexpr int kAllPlayable = 0;
constexpr int kSomeFailed = 1;
constexpr int kWrongUsage = 2;

/// Wrong usage, or an input that cannot be read: one line for people, exit status 2.
class CommandError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The text with everything that could move a terminal's cursor or change its state written as
/// "\u001b"; a line break is written so too.
std::string printable(std::string_view text);

/// Writes to standard error. Nobody may be there to read it, which is no failure.
void writeToStandardError(std::string_view text) noexcept;

/// Writes "tamzo-vast: <message>" as one line on standard error.
void complain(std::string_view message);

/// Says that memory has run out, and takes none for it.
void complainOfMemory() noexcept;

}  // namespace tamzo::command
