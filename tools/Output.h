#pragma once

#include <string>
#include <string_view>

namespace tamzo::command {

/// Where the command's answer goes: a file, or standard output for "". A file is opened when the
/// first byte is written, so that a run that fails before leaves it alone. Every function throws
/// CommandError when writing fails.
class Output {
 public:
  explicit Output(std::string path);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output();

  /// Hands the text to the system before it returns, all of it where a signal ends the program.
  void write(std::string_view text);
  // The same for what a response may have a say in: it goes out as it is, but a terminal gets what
  // cannot act on it.
  void writeJson(std::string_view json);
  void writeLines(std::string_view text);

  /// What was written is complete, be it nothing.
  void finish();

  /// True when a person watches.
  bool isTerminal() const noexcept { return isTerminal_; }
  /// The columns of the terminal.
  std::size_t columns() const noexcept;
  /// "" is standard output.
  const std::string& path() const noexcept { return path_; }

 private:
  static constexpr int kNotOpen = -1;

  int descriptor();
  void writeAll(std::string_view text);
  [[noreturn]] void fail() const;

  std::string path_;
  int file_ = kNotOpen;
  bool isTerminal_ = false;
};

}  // namespace tamzo::command
