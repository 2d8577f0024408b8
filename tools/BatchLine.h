#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tamzo/base/Text.h"
#include "tamzo/vast/RecordJson.h"

namespace tamzo::command {

/// What one response of a batch is answered with.
struct BatchAnswer {
  std::string line;            ///< one line of JSON, without its line break, with room for it
  std::string problem;         ///< why the input could not be read; empty when it could
  int errorCode = 0;           ///< the record's, where there is one
  std::size_t inputBytes = 0;  ///< how much of the input it answers
};

/// What answers are made of.
struct AnswerForm {
  bool hasRecord = true;  ///< false: an answer with a record is nothing but its error code
  RecordContent content = RecordContent::whole;
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
