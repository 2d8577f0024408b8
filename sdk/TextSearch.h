#pragma once

#include <cstddef>
#include <string_view>

#include "xml/Export.h"

namespace tamzo {

/// A place in a text.
struct TextMatch {
  std::size_t begin = std::string_view::npos;
  std::size_t end = std::string_view::npos;

  explicit operator bool() const noexcept { return begin != std::string_view::npos; }
};

/// The first place at or after `from` where `word`, in any letter case, stands right before "=";
/// the match includes the "=". `word` is ASCII; letter case is Unicode's, so that the long s
/// (U+017F) is an s. Runs at memory speed over text that holds no such word.
TAMZO_EXPORT TextMatch findAssignment(std::string_view text, std::string_view word,
                                      std::size_t from) noexcept;

}  // namespace tamzo
