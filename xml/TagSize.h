#pragma once

#include <string_view>

namespace tamzo {

/// True when `text` holds a start tag with more attributes than any real document has. libxml2
/// compares each attribute of an element with all those before it, so that such a tag costs it
/// time quadratic in its length.
///
/// A document type, or anything else that begins so, ends the search: where it ends is for libxml2
/// to say, and what follows is a text of its own.
///
/// A tag of less than 8 KB may pass with some more: what it can cost is bounded by its length.
/// Costs next to nothing on ordinary text.
bool hasOversizedTag(std::string_view text) noexcept;

}  // namespace tamzo
