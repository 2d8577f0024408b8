#include "explain/Rules.h"

#include <algorithm>
#include <array>

namespace tamzo::explain {
namespace {

constexpr auto kRules = std::to_array<Rule>({
#define TAMZO_FINDING(id, severity, function) {id, Severity::severity, function},
#include "explain/Rules.def"
#undef TAMZO_FINDING
});

}  // namespace

std::span<const Rule> rules() noexcept { return kRules; }

const Rule* findRule(std::string_view id) noexcept {
  const auto* found =
      std::find_if(kRules.begin(), kRules.end(), [id](const Rule& rule) { return rule.id == id; });
  return found == kRules.end() ? nullptr : found;
}

std::vector<Finding> findAll(const Chain& chain) {
  Findings findings;
  bool hasError = chain.verdict() == Verdict::playable;
  for (const Rule& rule : kRules) {
    if (rule.severity == Severity::error && hasError) {
      continue;
    }
    findings.startKind(rule.id, rule.severity);
    rule.find(chain, findings);
    hasError = hasError || (rule.severity == Severity::error && findings.isFound());
  }
  return findings.take(chain);
}

}  // namespace tamzo::explain
