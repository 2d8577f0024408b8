#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

namespace tamzo::command {

/// A line without its line break, in the block that it was read into.
struct Line {
  std::string_view text;
  std::shared_ptr<const char[]> block;
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
  /// stopped. Throws CommandError when the descriptor cannot be read, and std::bad_alloc when there
  /// is no memory for reading on, after which it may be called again.
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
  void skipLine();

  int descriptor_;
  std::array<int, 2> stopPipe_{};  // what can be read says stop
  std::shared_ptr<char[]> block_;
  std::size_t size_ = 0;   // of the block
  std::size_t begin_ = 0;  // what it holds from here to end_ is still to be given out
  std::size_t end_ = 0;
  std::size_t searched_ = 0;  // there is no line break from begin_ to here
  bool isAtEnd_ = false;
  bool isStopped_ = false;
};

}  // namespace tamzo::command
