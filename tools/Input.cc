#include "tools/Input.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "base/Utf8.h"
#include "tools/CommandError.h"
#include "tools/StandardError.h"
#include "tools/Terminal.h"

namespace tamzo::command {
namespace {

struct CloseFile {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

std::string readAll(std::FILE* file, const std::string& name) {
  std::string text;
  std::array<char, 1U << 16U> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), file)) {
    text.append(buffer.data(), count);
  }
  if (std::ferror(file) != 0) {
    throw CommandError(name + ": " + std::strerror(errno));
  }
  return text;
}

std::string readFile(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    throw CommandError(path + ": " + std::strerror(errno));
  }
  if (S_ISDIR(status.st_mode)) {
    throw CommandError(path + ": is a folder, not a file");
  }
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) {
    throw CommandError(path + ": " + std::strerror(errno));
  }
  return readAll(file.get(), path);
}

}  // namespace

void sayThatInputIsAwaited(const std::string& what, const std::string& command) {
  if (isTerminal(STDIN_FILENO) && isTerminal(STDERR_FILENO)) {
    complain("reading " + what + " from this terminal; Ctrl-D ends it, Ctrl-C gives up (see " +
             "tamzo-vast " + command + " --help)");
  }
}

std::string withoutByteOrderMark(std::string text) {
  text.erase(0, byteOrderMarkOf(text));
  return text;
}

std::string readInput(const std::string& path) {
  const bool isStandardInput = path.empty() || path == "-";
  const std::string name = isStandardInput ? "standard input" : path;
  std::string text = isStandardInput ? readAll(stdin, name) : readFile(path);
  if (!isUtf8(text)) {
    throw CommandError(name + ": is not UTF-8 text");
  }
  return withoutByteOrderMark(std::move(text));
}

}  // namespace tamzo::command
