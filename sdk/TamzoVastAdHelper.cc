#include "sdk/TamzoVastAdHelper.h"

#include <algorithm>
#include <string>

namespace tamzo {

DDXMLElement TamzoVastAdHelper::getFirstElement(const DDXMLElement& element,
                                                std::string_view withKeyPath) {
  if (withKeyPath.find('/') != std::string_view::npos) {
    return {};
  }
  std::string path(withKeyPath);
  std::replace(path.begin(), path.end(), '.', '/');
  const XPath steps(path);
  return steps.isChildPath() && !steps.isAbsolute() ? element.firstNodeForXPath(steps)
                                                    : DDXMLElement();
}

}  // namespace tamzo
