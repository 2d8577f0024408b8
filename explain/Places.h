#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "explain/Explanation.h"

namespace tamzo::explain {

/// The places of `offsets`, in bytes, in their order. An offset past the end is the end. Takes one
/// pass over the text.
std::vector<Place> placesOf(std::string_view text, const std::vector<std::size_t>& offsets);

/// As placesOf, without the excerpts.
std::vector<std::size_t> linesOf(std::string_view text, const std::vector<std::size_t>& offsets);

/// The first `count` characters of a text, followed by an ellipsis where there are more.
std::string shortened(std::string_view text, std::size_t count);

/// Where the character of that number, from 0, begins; the text's size where it has no more than
/// that.
std::size_t byteOf(std::string_view text, std::size_t character) noexcept;

/// UTF-16 code units of a text, in which the parser counts.
std::size_t utf16Length(std::string_view text) noexcept;

}  // namespace tamzo::explain
