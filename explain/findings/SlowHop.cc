#include <fmt/format.h>

#include <cmath>

#include "explain/Rules.h"
#include "explain/Words.h"

namespace tamzo::explain {

void findSlowHop(const Chain& chain, Findings& findings) {
  constexpr double kSlow = 1000.0;
  double whole = 0.0;
  for (const SeenHop& hop : chain.hops()) {
    whole += hop.fetch ? hop.fetch->milliseconds.total : 0.0;
  }
  for (const SeenHop& hop : chain.hops()) {
    const double own = hop.fetch ? hop.fetch->milliseconds.total : 0.0;
    if (own <= kSlow || own <= whole / 2.0) {
      continue;
    }
    std::string json;
    appendJsonNumber(json, static_cast<std::int64_t>(std::llround(own)));
    findings.add(hop.number)
        .say(fmt::format("{} took {} of {} in all.", hostInWords(hop.url), inSeconds(own),
                         inSeconds(whole)),
             "Whoever runs that server: answer faster; viewers do not wait.")
        .withJson("milliseconds", json);
  }
}

}  // namespace tamzo::explain
