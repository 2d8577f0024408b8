#include "tools/Suggestion.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tamzo::command {
namespace {

constexpr std::size_t kLongestTyped = 64;
constexpr std::size_t kLettersPerSlip = 3;
constexpr std::size_t kMostSlips = 3;

// Letters to be inserted, taken away, changed, or swapped with their neighbour.
std::size_t slipsBetween(std::string_view a, std::string_view b) {
  std::vector<std::size_t> beforeLast(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> now(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) {
    now[j] = j;
  }
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::swap(beforeLast, last);
    std::swap(last, now);
    now[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      now[j] = std::min({last[j] + 1, now[j - 1] + 1, changed});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        now[j] = std::min(now[j], beforeLast[j - 2] + 1);
      }
    }
  }
  return now[b.size()];
}

}  // namespace

std::string nearestName(std::string_view typed, const std::vector<std::string>& names) {
  constexpr std::size_t kShortestBeginning = 2;
  if (typed.size() < kShortestBeginning || typed.size() > kLongestTyped) {
    return "";
  }
  std::string nearest;
  std::size_t fewest = std::min(typed.size() / kLettersPerSlip, kMostSlips) + 1;
  for (const std::string& name : names) {
    const std::size_t slips = name.starts_with(typed) ? 0 : slipsBetween(typed, name);
    if (slips < fewest) {
      fewest = slips;
      nearest = name;
    }
  }
  return nearest;
}

std::string didYouMean(std::string_view typed, const std::vector<std::string>& names) {
  const std::string nearest = nearestName(typed, names);
  return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

}  // namespace tamzo::command
