#pragma once

#include <cstddef>
#include <string_view>

namespace tamzo {

/// What readJson finds, in the order of the text. Every `written` is a part of the text itself, so
/// that it also tells where. A function that returns false ends the reading.
class JsonHandler {
 public:
  virtual ~JsonHandler() = default;

  /// null, true, false, or a number of any length and size.
  virtual bool scalar(std::string_view written) = 0;
  /// A string. `characters`, without escapes, is UTF-8 and does not outlive the call.
  virtual bool string(std::string_view characters, std::string_view written) = 0;
  /// The key of what comes next.
  virtual bool key(std::string_view characters) = 0;
  /// The "[" or "{" of a list or an object.
  virtual bool begin(std::string_view written) = 0;
  /// The "]" or "}" of one that has `count` entries.
  virtual bool end(std::string_view written, std::size_t count) = 0;
};

enum class JsonFault {
  none,
  malformed,
  notText,  ///< a string with bytes that are not UTF-8, or with half a surrogate pair
  tooDeep,  ///< brackets that nest deeper than 512, the most that the system takes
  tooLong,  ///< 4 GiB or more
  stopped,  ///< by the handler
};

/// Where a text is no JSON, or none that is taken, and why.
struct JsonProblem {
  std::size_t offset = 0;  ///< in bytes, from the start of the text
  std::string_view cause;  ///< a sentence without a full stop
};

/// Reads JSON from front to back: strict, but for a byte order mark in front, with any value at the
/// top. `problem` is left alone where there is none. Throws std::bad_alloc, and what the handler
/// throws.
JsonFault readJson(std::string_view text, JsonHandler& handler, JsonProblem* problem = nullptr);

/// What readJson finds wrong in the text, where nothing else of it is asked. Throws std::bad_alloc.
JsonFault checkJson(std::string_view text);

}  // namespace tamzo
