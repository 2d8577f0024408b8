#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tamzo::command {

/// Lines of a descriptor, of any length, each as soon as it has arrived.
class LineReader {
 public:
  /// Does not own the descriptor. Throws CommandError when the system has no pipe left.
  explicit LineReader(int descriptor);
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;
  ~LineReader();

  /// Waits for the next line and returns it without its line break; the last may have none.
  /// Nothing at the end, and when stopped. Throws CommandError when the descriptor cannot be read,
  /// and std::bad_alloc for a line that memory does not hold; the next call gives the line after.
  std::optional<std::string> next();

  /// Ends the wait for a line, now and from now on. From any thread.
  void stop() noexcept;

 private:
  std::string_view unreadPart() const;
  bool endPart();
  void skipLine();
  bool waitForInput();
  bool readBlock();

  int descriptor_;
  std::array<int, 2> stopPipe_{};  // what can be read says stop
  std::array<char, std::size_t{1} << 16U> block_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  bool isStopped_ = false;
};

}  // namespace tamzo::command
