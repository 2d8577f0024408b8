#include <fmt/format.h>

#include "explain/Rules.h"
#include "explain/Words.h"

namespace tamzo::explain {

void findChainLoop(const Chain& chain, Findings& findings) {
  std::vector<std::pair<std::string_view, std::vector<std::int32_t>>> asked;
  for (const SeenHop& hop : chain.hops()) {
    if (hop.url.isNil()) {
      continue;
    }
    auto entry = asked.begin();
    while (entry != asked.end() && entry->first != hop.url.view()) {
      ++entry;
    }
    if (entry == asked.end()) {
      entry = asked.emplace(asked.end(), hop.url.view(), std::vector<std::int32_t>());
    }
    entry->second.push_back(hop.number);
  }
  for (const auto& [url, hops] : asked) {
    if (hops.size() < 2) {
      continue;
    }
    std::string list;
    for (const std::int32_t hop : hops) {
      list += (list.empty() ? "" : ", ") + std::to_string(hop);
    }
    findings.add(hops[1])
        .say(fmt::format("Hops {} asked for the same URL {}.", list, quoted(url)),
             "Whoever made these Wrappers: a Wrapper must not lead back to itself.")
        .with("url", url)
        .with("hops", hops);
  }
}

}  // namespace tamzo::explain
