#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "xml/Export.h"

namespace tamzo {

/// A place in a text.
struct TextMatch {
  std::size_t begin = std::string_view::npos;
  std::size_t end = std::string_view::npos;

  explicit operator bool() const noexcept { return begin != std::string_view::npos; }
};

/// Finds the places where a word stands right before "=", in any letter case. The word is ASCII;
/// letter case is Unicode's, so that the long s (U+017F) is an s. Runs at memory speed over text
/// that holds no such word.
///
/// Holds a view of the word, which must outlive the search.
class TAMZO_EXPORT AssignmentSearch {
 public:
  explicit AssignmentSearch(std::string_view word) noexcept;

  /// The first such place at or after `from`; the match includes the "=".
  TextMatch find(std::string_view text, std::size_t from) const noexcept;

 private:
  std::size_t nextCandidate(std::string_view text, std::size_t from) const noexcept;

  std::string_view word_;
  std::uint32_t front_ = 0;  // the first letters in lower case
  std::size_t known_ = 0;    // how many letters those are; 0 where case is not so simple
};

}  // namespace tamzo
