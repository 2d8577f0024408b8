#pragma once

#include <cstddef>
#include <string_view>

namespace tamzo {

/// A place in a text.
struct TextMatch {
  std::size_t begin = std::string_view::npos;
  std::size_t end = std::string_view::npos;

  explicit operator bool() const noexcept { return begin != std::string_view::npos; }
};

/// The first place at or after `from` where `word` stands right before "=", in any letter case; the
/// match includes the "=". The word is ASCII; letter case is Unicode's, so that the long s (U+017F)
/// is an s. Runs at memory speed over text that holds no "=".
TextMatch findAssignment(std::string_view text, std::string_view word, std::size_t from) noexcept;

}  // namespace tamzo
