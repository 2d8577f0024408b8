// One line of the command's batch input. The answer must be one line of JSON that says what the
// library says of the same response.

#include <string>

#include "base/JsonDepth.h"
#include "base/Utf8.h"
#include "fuzz/Fuzzing.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "tools/Batch.h"
#include "tools/Input.h"

using namespace tamzo;
using namespace tamzo::fuzz;
using nlohmann::ordered_json;

namespace {

std::string dump(const ordered_json& value) {
  return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

// The text that the line asks to be parsed; nothing for a line that is no good.
std::optional<std::string> vastOf(const std::string& line) {
  if (!isUtf8(line) || !isShallowJson(line) || line.find('\0') != std::string::npos) {
    return std::nullopt;
  }
  const auto request = ordered_json::parse(line, nullptr, false);
  if (!request.is_object() || !request.contains("vast") || !request["vast"].is_string()) {
    return std::nullopt;
  }
  return request["vast"].get<std::string>();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  makeDeterministic();
  const std::string line(asText(data, size));
  const command::BatchAnswer answer = command::answerBatchLine(line);

  require(answer.line.find_first_of("\r\n") == std::string::npos, "an answer of several lines");
  require(isUtf8(answer.line), "an answer that is not UTF-8");
  const auto written = ordered_json::parse(answer.line, nullptr, false);
  require(written.is_object() && written.size() == 2 && written.contains("id"),
          "an answer without its two members");

  const auto vast = vastOf(line);
  require(vast.has_value() == answer.problem.empty(), "good and bad lines are confused");
  require(written.contains(vast ? "record" : "error"), "record and error are confused");
  if (!vast) {
    require(answer.errorCode == 0, "an error code without a record");
    requireEqual(written["error"].get<std::string>(), answer.problem, "two reasons");
    return 0;
  }
  const auto request = ordered_json::parse(line);
  requireEqual(dump(written["id"]), dump(request.value("id", ordered_json())),
               "the id is not the one given");
  const auto ad = TamzoVastAd::initWithVast(Text(command::withoutByteOrderMark(*vast)));
  require(answer.errorCode == ad->errorCode(), "another error code");
  requireEqual(dump(written["record"]), dump(checkedRecord(*ad)), "another record");
  return 0;
}
