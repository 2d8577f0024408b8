#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "explain/Findings.h"

namespace tamzo::explain {

/// A kind of finding: one unit in explain/findings, and one row in Rules.def.
struct Rule {
  std::string_view id;
  Severity severity;
  void (*find)(const Chain& chain, Findings& findings);
};

/// All of them. Of the errors, the first that is found is the one.
std::span<const Rule> rules() noexcept;

/// The rule of that id; null when there is none.
const Rule* findRule(std::string_view id) noexcept;

/// What is to know of a parse.
std::vector<Finding> findAll(const Chain& chain);

#define TAMZO_FINDING(id, severity, function) void function(const Chain& chain, Findings& findings);
#include "explain/Rules.def"
#undef TAMZO_FINDING

}  // namespace tamzo::explain
