// One line of the command's batch input. The answer must be one line of JSON that says what the
// library says of the same response.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include "base/Utf8.h"
#include "fuzz/Fuzzing.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "tools/BatchLine.h"
#include "tools/Input.h"

using namespace tamzo;
using namespace tamzo::fuzz;
using nlohmann::ordered_json;

namespace {

constexpr std::size_t kNumber = 7;

std::size_t takeDigits(std::string_view& text) {
  const std::size_t count = std::min(text.find_first_not_of("0123456789"), text.size());
  text.remove_prefix(count);
  return count;
}

// True when the text is a JSON number from front to back.
bool isNumber(std::string_view text) {
  text.remove_prefix(text.starts_with('-') ? 1 : 0);
  const bool startsWithZero = text.starts_with('0');
  const std::size_t digits = takeDigits(text);
  if (digits == 0 || (startsWithZero && digits > 1)) {
    return false;
  }
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    if (takeDigits(text) == 0) {
      return false;
    }
  }
  if (text.starts_with('e') || text.starts_with('E')) {
    text.remove_prefix(1);
    text.remove_prefix(text.starts_with('+') || text.starts_with('-') ? 1 : 0);
    if (takeDigits(text) == 0) {
      return false;
    }
  }
  return text.empty();
}

// The line with every number that no double holds as a list of a string, which nlohmann-json can
// read, and which is no key either.
std::string readable(std::string_view line) {
  constexpr std::string_view kOfNumbers = "+-.0123456789Ee";
  std::string out;
  bool inString = false;
  for (std::size_t at = 0; at < line.size();) {
    const char c = line[at];
    std::size_t end = at + 1;
    bool isTooLarge = false;
    if (inString) {
      end += c == '\\' && end < line.size() ? 1 : 0;
      inString = c != '"';
    } else if (c == '-' || (c >= '0' && c <= '9')) {
      end = std::min(line.find_first_not_of(kOfNumbers, at), line.size());
      const std::string number(line.substr(at, end - at));
      isTooLarge = isNumber(number) && std::isinf(std::strtod(number.c_str(), nullptr));
    } else {
      inString = c == '"';
    }
    const std::string_view part = line.substr(at, end - at);
    out += isTooLarge ? "[\"" + std::string(part) + "\"]" : std::string(part);
    at = end;
  }
  return out;
}

// The text that the line asks to be parsed; nothing for a line that is no good.
std::optional<std::string> vastOf(const std::string& line) {
  if (!isUtf8(line) || !isShallowJson(line)) {
    return std::nullopt;
  }
  const auto request = ordered_json::parse(readable(line), nullptr, false);
  if (!request.is_object() || !request.contains("vast") || !request["vast"].is_string()) {
    return std::nullopt;
  }
  return request["vast"].get<std::string>();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  makeDeterministic();
  const std::string line(asText(data, size));
  const command::BatchAnswer answer = command::answerBatchLine(line, kNumber);

  require(answer.line.find_first_of("\r\n") == std::string::npos, "an answer of several lines");
  require(isUtf8(answer.line), "an answer that is not UTF-8");
  const auto written = ordered_json::parse(readable(answer.line), nullptr, false);
  const auto vast = vastOf(line);
  require(written.is_object() && written.size() == (vast ? 2 : 3) && written.contains("id"),
          "an answer without its members");
  require(vast.has_value() == answer.problem.empty(), "good and bad lines are confused");
  require(written.contains(vast ? "record" : "error"), "record and error are confused");
  if (!vast) {
    require(answer.errorCode == 0, "an error code without a record");
    requireEqual(written["error"].get<std::string>(), answer.problem, "two reasons");
    require(written["line"] == kNumber, "another line");
    return 0;
  }
  const auto request = ordered_json::parse(readable(line));
  requireEqual(dump(written["id"]), dump(request.value("id", ordered_json())),
               "the id is not the one given");
  const auto ad = TamzoVastAd::initWithVast(Text(command::withoutByteOrderMark(*vast)));
  require(answer.errorCode == ad->errorCode(), "another error code");
  requireEqual(dump(written["record"]), dump(checkedRecord(*ad)), "another record");
  return 0;
}
