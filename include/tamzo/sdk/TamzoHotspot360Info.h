#pragma once

#include <memory>
#include <utility>

#include "tamzo/base/Export.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

/// One hotspot of a 360-degree video.
class TAMZO_EXPORT TamzoHotspot360Info {
 public:
  /// Null for an element that holds nothing to read: no attribute, no child element and no text
  /// but white space.
  static std::shared_ptr<TamzoHotspot360Info> initWithNode(DDXMLElement node);

  const DDXMLElement& node() const noexcept { return node_; }

 private:
  explicit TamzoHotspot360Info(DDXMLElement node) noexcept : node_(std::move(node)) {}

  DDXMLElement node_;
};

}  // namespace tamzo
