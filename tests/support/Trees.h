#pragma once

#include <memory>

#include "xml/XmlParser.h"
#include "xml/XmlTree.h"

namespace tamzo::testing {

/// The tree of a text; null, with the reason in `error` where that is not null, when there is none.
inline std::shared_ptr<const XmlTree> parseXml(const Text& text, XmlError* error) {
  XmlParser parser;
  auto tree = parser.parse(text);
  if (error != nullptr) {
    *error = parser.error();
  }
  return tree;
}

}  // namespace tamzo::testing
