#include "tools/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <string_view>

namespace tamzo::command {
namespace {

constexpr std::size_t kUsualColumns = 80;

// "" for one that is not set.
std::string_view variable(const char* name) noexcept {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

bool isDumb() noexcept { return variable("TERM") == "dumb"; }

}  // namespace

bool isTerminal(int descriptor) noexcept { return isatty(descriptor) == 1; }

bool isLivelyTerminal(int descriptor) noexcept { return isTerminal(descriptor) && !isDumb(); }

std::size_t terminalColumns(int descriptor) noexcept {
  winsize size{};
  if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
    return size.ws_col;
  }
  const std::string_view columns = variable("COLUMNS");
  std::size_t count = 0;
  std::from_chars(columns.data(), columns.data() + columns.size(), count);
  return count > 0 ? count : kUsualColumns;
}

bool showsColours(ColourChoice choice, int descriptor) noexcept {
  if (choice != ColourChoice::automatic) {
    return choice == ColourChoice::always;
  }
  const std::string_view forced = variable("CLICOLOR_FORCE");
  if (!forced.empty() && forced != "0") {
    return true;
  }
  return variable("NO_COLOR").empty() && isLivelyTerminal(descriptor);
}

}  // namespace tamzo::command
