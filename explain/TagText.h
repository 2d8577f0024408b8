#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tamzo::explain {

/// An attribute as it is written.
struct AttributeText {
  std::string_view name;
  std::string_view value;  ///< between the quotes, entities as they are written
  std::size_t nameAt = 0;  ///< in the whole text
  std::size_t end = 0;     ///< past the value
};

/// A start tag as it is written.
struct TagText {
  std::string_view name;
  std::vector<AttributeText> attributes;
  std::size_t end = 0;  ///< past its ">", or where the text ends
};

/// Reads the start tag whose "<" stands at `at`. What is no attribute is passed over, so that any
/// text can be read.
TagText readTag(std::string_view text, std::size_t at);

/// Where the "<" of the root's start tag stands; npos in a text that has none.
std::size_t findRoot(std::string_view text) noexcept;

/// The first attribute of that name; null when there is none.
const AttributeText* findAttribute(const TagText& tag, std::string_view name) noexcept;

/// A value as it is meant: references to characters and to the five entities of XML resolved.
std::string decoded(std::string_view written);

}  // namespace tamzo::explain
