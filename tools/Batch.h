#pragma once

#include <string>
#include <vector>

namespace tamzo::command {

/// Parses every response that `paths` name (files, or folders of *.xml files), or, with no path,
/// one JSON object a line on standard input, on `threads` threads, and writes one line of JSON for
/// each to `outputPath` in input order. Memory is bounded by the longest responses, not by their
/// number. Returns the exit status; throws CommandError where the output cannot be written.
int runBatch(const std::vector<std::string>& paths, unsigned threads,
             const std::string& outputPath);

}  // namespace tamzo::command
