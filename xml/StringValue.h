#pragma once

#include <libxml/tree.h>

#include <memory>
#include <string>

#include "tamzo/base/Text.h"
#include "xml/XmlTree.h"

namespace tamzo {

/// The text of `node` and its descendants; shares the tree where it stands there in one piece.
Text stringValueOf(const xmlNode* node, const std::shared_ptr<const XmlTree>& tree);

/// As above, always copied.
std::string textOf(const xmlNode* node);

/// What an entity reference stands for, as text.
std::string entityTextOf(const xmlNode* reference);

}  // namespace tamzo
