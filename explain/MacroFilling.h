#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "explain/Explanation.h"

namespace tamzo::explain {

/// What became of the macros of a tag.
struct MacroFilling {
  std::vector<FilledMacro> filled;    ///< in the order of the tag, each name once
  std::vector<std::string> unfilled;  ///< in the order of the tag, each name once
};

/// A name in brackets.
struct BracketedName {
  std::size_t begin = std::string_view::npos;  ///< of the "["
  std::string_view name;

  std::size_t end() const noexcept { return begin + name.size() + 2; }
  explicit operator bool() const noexcept { return begin != std::string_view::npos; }
};

/// The first bracketed name at or after `from`: a letter or "_", then letters, digits, "_".
BracketedName findBracketedName(std::string_view text, std::size_t from) noexcept;

/// Compares a tag as written with what it was filled to, both trimmed.
MacroFilling compareFilling(std::string_view tag, std::string_view filled);

}  // namespace tamzo::explain
