#pragma once

#include <string>
#include <vector>

#include "tamzo/sdk/TamzoHost.h"
#include "tools/Har.h"

namespace tamzo::command {

/// Notes what the fetches of one parse are answered. Must outlive the parse.
class ChainRecorder {
 public:
  /// A host that does as `inner` does and notes it here. `inner` must outlive the parse.
  TamzoHost hostAround(const TamzoHost& inner);

  /// A response that was given as text.
  void noteInput(const Text& response);

  /// All that was noted.
  Har take();

 private:
  void note(const FetchRequest& request, const FetchResult& result);

  Har har_;
  std::vector<std::string> filledTags_;
  std::vector<std::string> asked_;
};

}  // namespace tamzo::command
