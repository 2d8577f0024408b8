#include "xml/DocumentType.h"

namespace tamzo {
namespace {

// The end of the first `end` at or after `from`, or of the text.
std::size_t endOf(std::string_view text, std::string_view end, std::size_t from) noexcept {
  const std::size_t at = text.find(end, from);
  return at == std::string_view::npos ? text.size() : at + end.size();
}

// The end of the declaration that begins at `at`; a ">" in quotes does not end it.
std::size_t endOfDeclaration(std::string_view text, std::size_t at) noexcept {
  while (at < text.size()) {
    const char c = text[at++];
    if (c == '>') {
      break;
    }
    if (c == '"' || c == '\'') {
      at = endOf(text, std::string_view(&c, 1), at);
    }
  }
  return at;
}

bool declaresStructure(std::string_view declaration) noexcept {
  return declaration.starts_with("<!ELEMENT") || declaration.starts_with("<!ATTLIST") ||
         declaration.starts_with("<!NOTATION");
}

}  // namespace

std::size_t bytesOfStructure(std::string_view subset) noexcept {
  std::size_t bytes = 0;
  for (std::size_t at = subset.find_first_of("<]"); at < subset.size() && subset[at] == '<';
       at = subset.find_first_of("<]", at)) {
    const std::string_view markup = subset.substr(at);
    if (markup.starts_with("<!--")) {
      at = endOf(subset, "-->", at + 4);
    } else if (markup.starts_with("<?")) {
      at = endOf(subset, "?>", at + 2);
    } else {
      const std::size_t end = endOfDeclaration(subset, at);
      bytes += declaresStructure(markup) ? end - at : 0;
      at = end;
    }
  }
  return bytes;
}

}  // namespace tamzo
