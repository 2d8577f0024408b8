#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/Numbers.h"
#include "base/WhiteSpace.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

// How the SDK's components read the texts and attributes of an element.

/// The element's text without white space at both ends; nil for a nil element.
inline Text trimmedText(const DDXMLElement& element) {
  const Text whole = element.stringValue();
  return whole.isNil() ? whole : whole.part(trimWhiteSpace(whole));
}

/// The attribute by integer reading; absent when the attribute is.
inline std::optional<std::int32_t> integerAttribute(const DDXMLElement& element,
                                                    std::string_view name) {
  const Text text = element.attributeValue(name);
  return text.isNil() ? std::nullopt : std::optional(integerValue(text));
}

/// The attribute by boolean reading; absent when the attribute is.
inline std::optional<bool> boolAttribute(const DDXMLElement& element, std::string_view name) {
  const Text text = element.attributeValue(name);
  return text.isNil() ? std::nullopt : std::optional(boolValue(text));
}

}  // namespace tamzo
