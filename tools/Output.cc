#include "tools/Output.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "tools/CommandError.h"

namespace tamzo::command {

void Output::write(std::string_view text) {
  std::FILE* out = stream();
  if (std::fwrite(text.data(), 1, text.size(), out) != text.size()) {
    fail();
  }
}

void Output::finish() {
  if (std::fflush(stream()) != 0) {
    fail();
  }
}

bool Output::takesColours() const {
  return path_.empty() && std::getenv("NO_COLOR") == nullptr && isatty(STDOUT_FILENO) == 1;
}

std::FILE* Output::stream() {
  if (path_.empty()) {
    return stdout;
  }
  if (file_ == nullptr) {
    file_.reset(std::fopen(path_.c_str(), "wb"));
    if (file_ == nullptr) {
      fail();
    }
  }
  return file_.get();
}

void Output::fail() const {
  throw CommandError((path_.empty() ? "standard output" : path_) + ": " + std::strerror(errno));
}

}  // namespace tamzo::command
