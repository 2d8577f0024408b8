#pragma once

#include <cstddef>
#include <string_view>

namespace tamzo {

/// What the clean-up puts one bare word in place of: from the word to past the white space.
struct Collapse {
  std::size_t begin = std::string_view::npos;
  std::size_t end = std::string_view::npos;

  explicit operator bool() const noexcept { return begin != std::string_view::npos; }
};

/// The first place at or after `from` that TamzoVastAd::replaceWithPattern() collapses.
Collapse findCollapse(std::string_view text, std::string_view word, std::size_t from) noexcept;

}  // namespace tamzo
