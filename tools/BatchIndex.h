#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "tools/BatchLine.h"

namespace tamzo::command {

/// A folder with an HTML page for each response that failed, and an index of all of them.
class BatchIndex {
 public:
  /// Makes the folder where there is none. Throws CommandError when nothing can be written there.
  explicit BatchIndex(std::string folder);

  /// The answer's report is written and let go of.
  void add(BatchAnswer& answer);
  /// Writes the index.
  void finish();

 private:
  struct Row {
    std::string id;
    int errorCode = 0;
    std::string finding;
    std::string host;
    std::string sentence;
    std::string file;  // "": it has no report
  };

  std::string charts() const;
  std::string table() const;

  std::string folder_;
  std::size_t responses_ = 0;
  std::size_t reports_ = 0;
  std::map<std::string, std::size_t> byCode_;
  std::map<std::string, std::size_t> byFinding_;
  std::map<std::string, std::size_t> byHost_;
  std::vector<Row> rows_;
};

}  // namespace tamzo::command
