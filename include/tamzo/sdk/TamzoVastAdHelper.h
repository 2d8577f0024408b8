#pragma once

#include <string_view>

#include "tamzo/base/Export.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

class TAMZO_EXPORT TamzoVastAdHelper {
 public:
  /// The first element that a dot-separated path of element names ("Icons.Icon") leads to as
  /// nested children of `element`; nil when there is none, when `element` is nil, or when the path
  /// is empty or has an empty name.
  static DDXMLElement getFirstElement(const DDXMLElement& element, std::string_view withKeyPath);
};

}  // namespace tamzo
