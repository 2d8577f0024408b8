#pragma once

#include <string_view>

namespace tamzo {

/// What the steps of an XPath expression, as libxml2 counts them, may cost it.
enum class XPathCost {
  /// Each about the same, however large the document is.
  even,
  /// As much as the document has nodes, or text. libxml2 puts together what several nodes of a step
  /// find by comparing each with all others, brings nodes that are no elements into order by
  /// looking for one from the other, and compares sets of nodes pair by pair: "..", "preceding::a",
  /// "a//b", "text()", unions, "a = b", "a[/b]" and functions like id() are such.
  byNode,
  /// As much as the square of the text: it looks for one text in another at every place anew.
  bySquareOfText
};

/// The most that a step of `expression` may cost, of a malformed one any of these.
XPathCost costOfSteps(std::string_view expression) noexcept;

}  // namespace tamzo
