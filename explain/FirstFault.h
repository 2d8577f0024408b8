#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tamzo::explain {

/// What keeps a text from being XML, as far as it has a finding of its own.
enum class FaultKind : std::uint8_t {
  none,
  unescapedAmpersand,
  undefinedEntity,
  duplicateAttribute,
  controlCharacter,
  blankBeforeDeclaration,
  cutOff,
  other,
};

/// The first fault of a text.
struct Fault {
  FaultKind kind = FaultKind::none;
  std::size_t at = 0;             ///< in bytes
  std::string name;               ///< of the entity, or of the attribute
  std::uint32_t codePoint = 0;    ///< of the control character
  std::vector<std::string> open;  ///< elements that are open where the text ends, outermost first
  /// Of the kind `other`: what to write instead, to follow "Ad server: "; "" where nothing more is
  /// known than that it is no XML. A literal.
  std::string_view remedy;
};

/// Finds the first fault in the order of the text. `none` does not say that a parser takes the
/// text: what has no finding of its own is looked for only as far as it takes to read on.
Fault findFirstFault(std::string_view text);

}  // namespace tamzo::explain
