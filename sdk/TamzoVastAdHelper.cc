#include "tamzo/sdk/TamzoVastAdHelper.h"

#include <algorithm>
#include <string>

#include "base/Ascii.h"

namespace tamzo {
namespace {

// Names joined by "/". Which letters beyond ASCII a name may have libxml2 knows.
bool isPathOfNames(std::string_view path) noexcept {
  const bool hasEmptyName = path.empty() || path.front() == '/' || path.back() == '/' ||
                            path.find("//") != std::string_view::npos;
  return !hasEmptyName && std::all_of(path.begin(), path.end(), [](char c) {
    return isAsciiAlphanumeric(c) || c == '/' || c == '_' || c == '-' || (c & '\x80') != 0;
  });
}

}  // namespace

DDXMLElement TamzoVastAdHelper::getFirstElement(const DDXMLElement& element,
                                                std::string_view withKeyPath) {
  if (withKeyPath.find('/') != std::string_view::npos) {
    return {};
  }
  std::string path(withKeyPath);
  std::replace(path.begin(), path.end(), '.', '/');
  return isPathOfNames(path) ? element.firstNodeForXPath(XPath(path)) : DDXMLElement();
}

}  // namespace tamzo
