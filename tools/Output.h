#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace tamzo::command {

/// Where the command's answer goes: a file, or standard output for "". A file is opened when the
/// first byte is written, so that a run that fails before leaves it alone. Every function throws
/// CommandError when writing fails.
class Output {
 public:
  explicit Output(std::string path) : path_(std::move(path)) {}

  void write(std::string_view text);
  /// Hands all that was written to the system.
  void finish();

  /// True when a person watches, and has not asked for plain text (NO_COLOR).
  bool takesColours() const;

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
  };

  std::FILE* stream();
  [[noreturn]] void fail() const;

  std::string path_;
  std::unique_ptr<std::FILE, CloseFile> file_;
};

}  // namespace tamzo::command
