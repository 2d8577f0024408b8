#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <string_view>

namespace tamzo::bench {

/// What everything is measured against: libxml2 builds the tree of `text` and frees it. False when
/// it builds none.
inline bool buildAndFreeTree(std::string_view text) {
  xmlDoc* doc = xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                              XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
  const bool isTree = doc != nullptr;
  xmlFreeDoc(doc);
  return isTree;
}

}  // namespace tamzo::bench
