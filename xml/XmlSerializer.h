#pragma once

#include <libxml/tree.h>

#include <string>

namespace tamzo {

/// `node` and all that it holds as XML in UTF-8, as libxml2 writes it. Changes nothing, so that
/// several threads may write parts of one tree. Throws std::bad_alloc when memory runs out.
std::string serializeXml(const xmlNode* node);

}  // namespace tamzo
