#include "tools/JsonMember.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>

namespace tamzo::command {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

// The end of the string whose opening quote stands at `at`.
std::size_t endOfString(std::string_view json, std::size_t at) noexcept {
  for (++at; at < json.size() && json[at] != '"'; ++at) {
    at += json[at] == '\\' ? 1 : 0;
  }
  return std::min(at + 1, json.size());
}

// The end of the value that begins at `at`: the "," or "}" of the object that it is a member of.
std::size_t endOfValue(std::string_view json, std::size_t at) noexcept {
  for (int depth = 0; at < json.size();) {
    const char c = json[at];
    if (depth == 0 && (c == ',' || c == '}')) {
      break;
    }
    depth += c == '{' || c == '[' ? 1 : 0;
    depth -= c == '}' || c == ']' ? 1 : 0;
    at = c == '"' ? endOfString(json, at) : at + 1;
  }
  return at;
}

// Line breaks stand between the parts of a value only; in a string they are escaped.
std::string onOneLine(std::string_view value) {
  value.remove_suffix(value.size() - std::min(value.find_last_not_of(kBlanks) + 1, value.size()));
  std::string line(value);
  std::replace(line.begin(), line.end(), '\r', ' ');
  std::replace(line.begin(), line.end(), '\n', ' ');
  return line;
}

}  // namespace

std::string writtenMember(std::string_view object, std::string_view name) {
  std::string_view value = "null";
  std::size_t at = object.find('{');
  while (at < object.size() && (at = object.find('"', at)) != std::string_view::npos) {
    const std::size_t keyEnd = endOfString(object, at);
    const auto key = nlohmann::json::parse(object.substr(at, keyEnd - at), nullptr, false);
    const std::size_t begin = object.find_first_not_of(kBlanks, object.find(':', keyEnd) + 1);
    if (begin == std::string_view::npos) {
      break;
    }
    const std::size_t end = endOfValue(object, begin);
    if (key.is_string() && key.get_ref<const std::string&>() == name) {
      value = object.substr(begin, end - begin);
    }
    at = end;
  }
  return onOneLine(value);
}

}  // namespace tamzo::command
