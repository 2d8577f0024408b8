#pragma once

#include <string>
#include <string_view>

namespace tamzo::command {

/// What one response of a batch is answered with.
struct BatchAnswer {
  std::string line;     ///< one line of JSON, without its line break
  std::string problem;  ///< why the input could not be read; empty when it could
  int errorCode = 0;    ///< the record's, where there is one
};

/// Answers one line of standard input: {"id": anything, "vast": "the response"}. The answer has the
/// id exactly as it is written there, which may be behind what makes the line unreadable, and then
/// is null. Throws std::bad_alloc.
BatchAnswer answerBatchLine(const std::string& line);

/// The record of a response, or why there is none, under an id that is JSON.
BatchAnswer answerResponse(const std::string& id, std::string vast);
BatchAnswer refuse(const std::string& id, const std::string& why);

/// The id of what has none.
inline constexpr const char* kNoId = "null";

/// A text as an id.
std::string idOf(std::string_view text);

}  // namespace tamzo::command
