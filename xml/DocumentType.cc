#include "xml/DocumentType.h"

#include "xml/Markup.h"

namespace tamzo {
namespace {

bool declaresStructure(std::string_view declaration) noexcept {
  return declaration.starts_with("<!ELEMENT") || declaration.starts_with("<!ATTLIST") ||
         declaration.starts_with("<!NOTATION");
}

}  // namespace

std::size_t bytesOfStructure(std::string_view subset) noexcept {
  std::size_t bytes = 0;
  for (std::size_t at = subset.find_first_of("<]"); at < subset.size() && subset[at] == '<';
       at = subset.find_first_of("<]", at)) {
    std::size_t end = pastRemark(subset, at);
    if (end == at) {
      end = pastTag(subset, at, [](char) {});
      bytes += declaresStructure(subset.substr(at)) ? end - at : 0;
    }
    at = end;
  }
  return bytes;
}

}  // namespace tamzo
