#pragma once

#include <libxml/tree.h>

#include <vector>

#include "tamzo/xml/DDXMLElement.h"
#include "tamzo/xml/XPath.h"
#include "xml/XmlTree.h"

namespace tamzo {

/// Calls `visit` with each element that the names in `steps` lead to below `parent`, in document
/// order, until it returns true; then returns true. Recursion is as deep as the tree at most.
template <typename Visit>
bool walkChildPath(xmlNode* parent, std::string_view steps, Visit& visit) {
  const std::string_view name = XPath::firstStep(steps);
  const bool isLast = name.size() == steps.size();
  for (xmlNode* child = parent->children; child != nullptr; child = child->next) {
    if (isElementNamed(child, name) &&
        (isLast ? visit(child) : walkChildPath(child, steps.substr(name.size() + 1), visit))) {
      return true;
    }
  }
  return false;
}

/// Has libxml2 evaluate `path` from `context` and puts the nodes found into `found`, in document
/// order. False when there is no node list to give; `error` then says why.
bool evaluateXPath(const XmlTree& tree, xmlNode* context, const XPath& path,
                   std::vector<xmlNode*>& found, XmlError* error);

}  // namespace tamzo
