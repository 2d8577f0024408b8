#include "tools/IdSearch.h"

#include "base/JsonReader.h"
#include "tools/BatchLine.h"

namespace tamzo::command {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

bool isJson(std::string_view text) { return checkJson(text) == JsonFault::none; }

/// Goes through a line by its strings and brackets, and takes everything else for granted.
class Scanner {
 public:
  explicit Scanner(std::string_view line) : line_(line) {}

  std::string_view lastId() {
    for (skipSpace(); at_ < line_.size(); skipSpace()) {
      const char c = line_[at_];
      if (c == '"') {
        takeString();
      } else if (c == '}' || c == ']') {
        --depth_;
        previous_ = line_[at_++];
      } else {
        depth_ += c == '{' || c == '[' ? 1 : 0;
        previous_ = line_[at_++];
      }
    }
    return id_;
  }

 private:
  void skipSpace() {
    while (at_ < line_.size() &&
           (line_[at_] == ' ' || line_[at_] == '\t' || line_[at_] == '\r' || line_[at_] == '\n')) {
      ++at_;
    }
  }

  char next() {
    skipSpace();
    return at_ < line_.size() ? line_[at_] : '\0';
  }

  // Behind the string that begins at `at`; the end of the line where it does not end.
  std::size_t endOfString(std::size_t at) const {
    ++at;
    while ((at = line_.find_first_of("\"\\", at)) != kNone) {
      if (line_[at] == '"') {
        return at + 1;
      }
      at += 2;
    }
    return line_.size();
  }

  void takeString() {
    const std::size_t begin = at_;
    at_ = endOfString(at_);
    const bool mayBeKey = depth_ == 1 && (previous_ == '{' || previous_ == ',');
    previous_ = '"';
    if (mayBeKey && line_.substr(begin, at_ - begin) == "\"id\"" && next() == ':') {
      ++at_;
      takeId();
    }
  }

  void takeId() {
    next();
    const std::size_t begin = at_;
    at_ = endOfValue(at_);
    const std::string_view value = line_.substr(begin, at_ - begin);
    previous_ = '"';
    if ((next() == ',' || next() == '}') && isJson(value)) {
      id_ = value;
    }
  }

  std::size_t endOfValue(std::size_t at) const {
    int depth = 0;
    while (at < line_.size()) {
      const char c = line_[at];
      if (depth == 0 && (c == ',' || c == '}' || c == ']')) {
        return at;
      }
      depth += c == '{' || c == '[' ? 1 : c == '}' || c == ']' ? -1 : 0;
      at = c == '"' ? endOfString(at) : at + 1;
    }
    return at;
  }

  std::string_view line_;
  std::size_t at_ = 0;
  int depth_ = 0;
  char previous_ = '\0';
  std::string_view id_ = kNoId;
};

}  // namespace

std::string searchId(std::string_view line) {
  const std::string_view id = Scanner(line).lastId();
  return std::string(id.substr(0, id.find_last_not_of(" \t\r\n") + 1));
}

}  // namespace tamzo::command
