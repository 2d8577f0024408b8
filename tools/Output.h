#pragma once

#include <string>
#include <string_view>

namespace tamzo::command {

/// Where the command's answer goes: a file, or standard output for "". A file is opened when the
/// first byte is written, so that a run that fails before leaves it alone. Every function throws
/// CommandError when writing fails.
class Output {
 public:
  explicit Output(std::string path) : path_(std::move(path)) {}
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output();

  /// Hands the text to the system before it returns, all of it where a signal ends the program.
  void write(std::string_view text);
  /// What was written is complete, be it nothing.
  void finish();

  /// True when a person watches, and has not asked for plain text (NO_COLOR).
  bool takesColours() const;

 private:
  static constexpr int kNotOpen = -1;

  int descriptor();
  [[noreturn]] void fail() const;

  std::string path_;
  int file_ = kNotOpen;
};

}  // namespace tamzo::command
