#pragma once

#include <string>
#include <vector>

#include "tools/BatchLine.h"

namespace tamzo::command {

/// What "tamzo-vast batch" is asked for.
struct BatchRequest {
  std::vector<std::string> paths;  ///< none: lines of standard input
  bool isRecursive = false;
  unsigned threads = 1;
  bool inOrder = true;
  bool isSummary = false;  ///< the table on the output, and no records
  bool isQuiet = false;    ///< neither table nor bar on standard error
  AnswerForm form;
  /// One of these findings makes the run fail.
  std::vector<std::string> failOn;
  std::string reportFolder;  ///< "": no HTML
  std::string outputPath;    ///< "" for standard output
};

/// Parses what the request names and writes one line of JSON for each response. On standard error
/// a table of error codes and, for a person who waits, a progress bar. Memory is bounded by the
/// longest responses, not by their number. Returns the exit status; throws CommandError when the
/// output cannot be written.
int runBatch(const BatchRequest& request);

}  // namespace tamzo::command
