#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tamzo/base/Text.h"
#include "tamzo/vast/RecordJson.h"

namespace tamzo::command {

/// What one response of a batch is answered with.
struct BatchAnswer {
  std::string line;            ///< one line of JSON, without its line break, with room for it
  std::string problem;         ///< why the input could not be read; empty when it could
  int errorCode = 0;           ///< the record's, where there is one
  std::size_t inputBytes = 0;  ///< how much of the input it answers
  /// How often each finding was made, where they were asked for.
  std::map<std::string_view, std::size_t> findings{};
  bool isLeftOut = false;  ///< it has none of the findings that are asked for
  // For an index, where one was asked for.
  std::string id{};           ///< as text
  std::string mainFinding{};  ///< why there is no ad; "" where there is one
  std::string host{};         ///< of the hop concerned, or where it came from
  std::string sentence{};     ///< what happened
  std::string report{};       ///< an HTML page, of a response that failed
};

/// What answers are made of.
struct AnswerForm {
  bool hasRecord = true;  ///< false: an answer with a record is nothing but its error code
  RecordContent content = RecordContent::whole;
  bool hasExplanation = false;    ///< in the answer
  bool countsFindings = false;    ///< whether or not the answer has them
  bool hasReport = false;         ///< what an index needs, and a page for what failed
  std::vector<std::string> only;  ///< leave out what has none of these findings; empty: nothing
};

/// Answers one line of a stream: {"id": anything, "vast": "the response"}. The answer has the id
/// exactly as it is written there, and a refused line's its number. Throws std::bad_alloc.
BatchAnswer answerBatchLine(std::string_view line, std::size_t number, const AnswerForm& form = {});

/// The record of a response, or why there is none, under an id that is JSON.
BatchAnswer answerResponse(const std::string& id, const Text& vast, const AnswerForm& form = {});

/// `id` is JSON.
BatchAnswer refuse(const std::string& id, const std::string& why);
BatchAnswer refuseLine(const std::string& id, std::size_t number, const std::string& why);

/// The id of what has none.
inline constexpr const char* kNoId = "null";

/// A text as an id.
std::string idOf(std::string_view text);

}  // namespace tamzo::command
