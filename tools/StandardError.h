#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tamzo::command {

/// Writes to standard error. Nobody may be there to read it, which is no failure.
void writeToStandardError(std::string_view text) noexcept;

/// Writes "tamzo-vast: <message>" as one line on standard error.
void complain(std::string_view message);

/// Says that memory has run out, and takes none for it.
void complainOfMemory() noexcept;

/// One line of the parser's log. On a terminal it cannot act on it, nor look like another line.
void writeLogLine(std::string_view line);

/// A line at the bottom of a terminal for a person who waits. It is drawn again ten times a second,
/// and is gone whenever something else is written, and at the end. Nothing where standard error is
/// no terminal, or one that cannot take a line away. One at a time.
class StatusLine {
 public:
  /// `text` is asked on a thread of its own for a line of at most so many columns, for the first
  /// time after that delay; it must not throw anything but std::bad_alloc.
  StatusLine(std::function<std::string(std::size_t columns)> text, std::chrono::milliseconds delay);
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;
  ~StatusLine();

  /// Draws it now.
  void draw() noexcept;

  static bool isPossible() noexcept;

  /// Takes the line away for as long as one stands, so that what is written to a terminal begins at
  /// the start of a line. Of one thread at a time.
  class Gap {
   public:
    Gap() noexcept;
    Gap(const Gap&) = delete;
    Gap& operator=(const Gap&) = delete;
    ~Gap();
  };

  /// Takes the line away. For a signal handler that ends the program.
  static void eraseAtTheEnd() noexcept;

 private:
  class Drawing;
  std::unique_ptr<Drawing> drawing_;
};

}  // namespace tamzo::command
