#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "tamzo/xml/DDXMLDocument.h"

namespace tamzo {

/// A piece of a text between two others: what stands between "<" and ">", or what does not.
struct MarkupPiece {
  enum class Kind { text, startTag, endTag, comment, instruction, cdata, documentType };
  Kind kind = Kind::text;
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// The piece of `text` that begins at `at`, which is not its end. Of any text whatever; right for
/// one that is XML. A piece that does not end goes to the end of the text.
MarkupPiece markupPieceAt(std::string_view text, std::size_t at) noexcept;

/// Where the "<" of the first start tag at or after `from` stands, where a piece must begin; npos
/// where none does.
std::size_t findStartTag(std::string_view text, std::size_t from) noexcept;

/// Where the "<" of each element's start tag stands in `text`, of which `document` was parsed; npos
/// for a nil element and for one that is not of that document, or that an entity brought. Takes one
/// pass over both, however many elements there are. Throws std::bad_alloc.
std::vector<std::size_t> findStartTags(std::string_view text, const DDXMLDocument& document,
                                       std::span<const DDXMLElement> elements);

}  // namespace tamzo
