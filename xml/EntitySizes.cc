#include "xml/EntitySizes.h"

#include <string>
#include <string_view>

#include "xml/XmlTree.h"

namespace tamzo {

std::size_t EntitySizes::sizeOf(const xmlDoc* doc, const xmlEntity* entity, std::size_t most,
                                int nesting) {
  if (entity->etype != XML_INTERNAL_GENERAL_ENTITY || entity->content == nullptr) {
    return 0;
  }
  if (nesting > maxNesting_) {
    return most + 1;
  }
  if (const auto known = known_.find(entity); known != known_.end()) {
    return known->second;
  }
  const std::string_view content(asChars(entity->content));
  std::size_t size = content.size();
  // A name ends at ";" and holds no "&": what lies between two of these is looked at once.
  std::size_t at = content.find('&');
  while (at != std::string_view::npos && size <= most) {
    const std::size_t end = content.find_first_of("&;", at + 1);
    if (end != std::string_view::npos && content[end] == ';') {
      const std::string name(content.substr(at + 1, end - at - 1));
      const auto* inner = xmlGetDocEntity(doc, asXml(name));
      size += inner == nullptr ? 0 : sizeOf(doc, inner, most, nesting + 1);
    }
    at = content.find('&', at + 1);
  }
  known_.emplace(entity, size);
  return size;
}

}  // namespace tamzo
