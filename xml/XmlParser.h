#pragma once

#include <memory>

#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

class XmlTree;

/// Builds the tree of `text`; null, with the reason in `error`, when there is none to build.
/// Throws std::bad_alloc when memory runs out.
std::shared_ptr<const XmlTree> parseXml(const Text& text, XmlError* error);

}  // namespace tamzo
