#pragma once

#include <memory>
#include <utility>

#include "tamzo/base/Export.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

/// One hotspot of a 360-degree video, which the player reads from the element.
///
/// Immutable: any number of threads may read one. Keeps the element's document alive.
class TAMZO_EXPORT TamzoHotspot360Info {
 public:
  /// A hotspot of that element. Null for one that holds nothing to read: no attribute, no child
  /// element and no text but white space; a nil element is such a one.
  static std::shared_ptr<TamzoHotspot360Info> initWithNode(DDXMLElement node);

  /// The Hotspot element; never nil.
  const DDXMLElement& node() const noexcept TAMZO_LIFETIMEBOUND { return node_; }

 private:
  explicit TamzoHotspot360Info(DDXMLElement node) noexcept : node_(std::move(node)) {}

  DDXMLElement node_;
};

}  // namespace tamzo
