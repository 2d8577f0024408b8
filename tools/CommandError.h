#pragma once

#include <stdexcept>

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

}  // namespace tamzo::command
