#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tamzo::testing {

// A run of the command that a test talks to while it goes on.
class RunningCommand {
 public:
  struct Streams {
    std::string inputFile;   // "" for a pipe, which write() fills
    std::string outputFile;  // "" for a pipe, which readLine() empties
    std::string errorFile = "/dev/null";
    std::function<void()> inChild = [] {};  // before the command takes over
    std::string onTerminal = "";  // which are a terminal instead: "i", "o", "e", "oe", ...
    unsigned short columns = 80;  // of that
  };

  RunningCommand(const std::vector<std::string>& arguments, const Streams& streams);
  RunningCommand(const RunningCommand&) = delete;
  RunningCommand& operator=(const RunningCommand&) = delete;
  ~RunningCommand();  // ends it

  // To a terminal as typed; "\4" at the start of a line ends the input.
  void write(const std::string& text);
  void closeInput();

  // The next line, without its line break; nothing at the end, and when none comes in good time.
  std::optional<std::string> readLine();
  // All that comes until the end.
  std::string readAll();
  // All that comes to the terminal until the end, or until it holds `awaited`.
  std::string readTerminal(const std::string& awaited = "");
  void closeOutput();
  int output() const { return output_; }

  void signal(int number) const;

  // The exit status, 128 and the number of the signal that ended it, or -1 when it did not end in
  // good time.
  int wait(int milliseconds = 30'000);

 private:
  bool fill() { return fill(output_, unread_); }
  static bool fill(int from, std::string& unread);

  pid_t child_ = -1;
  int terminal_ = -1;
  std::string unreadTerminal_;
  int input_ = -1;
  int output_ = -1;
  std::string unread_;
};

}  // namespace tamzo::testing
