#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tools/AnswerQueue.h"
#include "tools/BatchLine.h"

namespace tamzo::command {

/// How much there is to do, as far as that can be told beforehand.
struct BatchSize {
  std::size_t answers = 0;  ///< 0: not known
  std::size_t bytes = 0;    ///< of input; 0: not known
};

/// Work of which the size may be known.
class BatchSource : public WorkSource {
 public:
  virtual BatchSize size() const = 0;
};

/// What the paths name: files, URLs, files of lines (*.jsonl), "-" for lines of standard input,
/// folders; with no path, the lines of standard input. What cannot be read is answered in its
/// place.
std::unique_ptr<BatchSource> sourceOf(const std::vector<std::string>& paths, bool isRecursive,
                                      const AnswerForm& form);

}  // namespace tamzo::command
