#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <string_view>

#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

class DDXMLDocument;
class XmlTree;

/// One parse of one text: what it may take, and what came of it. Of one thread at a time.
class XmlParser {
 public:
  /// How many nodes the tree may have (see `nodes`); there is no bound by default.
  void setMaxNodes(std::size_t nodes) noexcept { maxNodes_ = nodes; }

  /// Builds the tree of `text`; null, with the reason in `error`, when there is none to build.
  /// Throws std::bad_alloc when memory runs out.
  std::shared_ptr<const XmlTree> parse(const Text& text);

  /// As `parse`, for those above this layer.
  std::shared_ptr<DDXMLDocument> parseDocument(const Text& text);

  /// How many nodes the last parse made, those of a text that was refused included: elements,
  /// attributes (two, with their value), declarations of namespaces, CDATA sections, comments,
  /// instructions, entities and references to them (two). Texts between them are not counted; there
  /// are at most two for each element and one for each other. A node takes 60 to 120 bytes beside
  /// its characters.
  std::size_t nodes() const noexcept { return nodes_; }

  /// Which bound the last text went beyond, such as "attributes"; "" when it was read, or is none
  /// for another reason. The names are those of the table in docs/maintaining.md. Valid for good.
  std::string_view bound() const noexcept { return bound_; }

  /// Why the last text is none; empty when it was read.
  const XmlError& error() const noexcept { return error_; }

 private:
  std::shared_ptr<const XmlTree> refuse(std::string_view reason, std::string_view bound = "");

  std::size_t maxNodes_ = std::numeric_limits<std::size_t>::max();
  std::size_t nodes_ = 0;
  std::string_view bound_;
  XmlError error_;
};

}  // namespace tamzo
