#pragma once

#include <string_view>

#include "tamzo/base/Export.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

/// Ways through the elements of a document, for the whole SDK. Every function may be called from
/// any thread.
class TAMZO_EXPORT TamzoVastAdHelper {
 public:
  /// The first element that a dot-separated path of element names ("Icons.Icon") leads to as
  /// nested children of `element`; nil when there is none, when `element` is nil, or when the path
  /// is empty or has an empty name. Names match exactly, and elements in no namespace only.
  static DDXMLElement getFirstElement(const DDXMLElement& element, std::string_view withKeyPath);
};

}  // namespace tamzo
