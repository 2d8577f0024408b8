#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tamzo/sdk/TamzoHost.h"
#include "tools/Har.h"

namespace tamzo::command {

/// Answers the fetches of one parse from a saved chain, and asks nobody. Must outlive the parse.
class ChainReplay {
 public:
  explicit ChainReplay(Har har);

  /// A host that does as `inner` does but for fetches, and for the values of [CACHEBUSTING] and
  /// [TIMESTAMP], which are those of the saved run. `inner` must outlive the parse.
  TamzoHost hostAround(const TamzoHost& inner);

  /// The first response of the chain that is VAST: a text, or the URL that it has. Nothing where
  /// there is none.
  std::optional<std::string> firstResponse() const;

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  FetchResult answer(const FetchRequest& request);
  std::size_t findAnswer(std::string_view url) const;
  std::size_t findByTag(std::string_view tag, std::vector<std::string>* values) const;
  std::size_t firstUnused(const std::vector<std::size_t>& found) const;
  Text fill(const Text& tag);

  Har har_;
  std::vector<std::string> urls_;  // of the entries, escaped alike
  std::vector<bool> isUsed_;
  std::string lastTag_;  // the one that is asked for next, macros unfilled
};

}  // namespace tamzo::command
