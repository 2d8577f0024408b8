#include "tamzo/sdk/TamzoHotspot360Info.h"

#include "base/WhiteSpace.h"

namespace tamzo {

std::shared_ptr<TamzoHotspot360Info> TamzoHotspot360Info::initWithNode(DDXMLElement node) {
  const bool holdsSomething = node.hasAttributes() || node.firstChildElement() ||
                              !trimWhiteSpace(node.stringValue()).empty();
  if (!holdsSomething) {
    return nullptr;
  }
  return std::shared_ptr<TamzoHotspot360Info>(new TamzoHotspot360Info(std::move(node)));
}

}  // namespace tamzo
