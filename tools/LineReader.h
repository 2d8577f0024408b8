#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tamzo::command {

/// A line without its line break.
struct Line {
  std::string text;
  bool isWhole = true;  ///< false: memory does not hold it, and `text` is how it begins
};

/// Lines of a descriptor, of any length, each as soon as it has arrived.
class LineReader {
 public:
  /// Does not own the descriptor. Throws CommandError when the system has no pipe left.
  explicit LineReader(int descriptor);
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;
  ~LineReader();

  /// Waits for the next line; the last may have no line break. Nothing at the end, and when
  /// stopped. Throws CommandError when the descriptor cannot be read.
  std::optional<Line> next();

  /// True when a line is there, or none will come any more. Throws like next().
  bool isReady();

  /// Ends the wait for a line, now and from now on. From any thread.
  void stop() noexcept;

 private:
  enum class Waiting { allowed, forbidden };

  std::size_t findBreak();
  bool fill(Waiting waiting);
  bool isReadable(Waiting waiting);
  void makeRoom();
  void forget() noexcept;
  Line take(std::size_t end);
  Line dropLongLine();

  int descriptor_;
  std::array<int, 2> stopPipe_{};  // what can be read says stop
  std::string buffer_;             // what it holds from begin_ to end_ is still to be given out
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t searched_ = 0;  // there is no line break from begin_ to here
  bool isAtEnd_ = false;
  bool isStopped_ = false;
};

}  // namespace tamzo::command
