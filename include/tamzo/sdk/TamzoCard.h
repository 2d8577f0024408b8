#pragma once

#include <memory>
#include <utility>

#include "tamzo/base/Export.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

/// One card of the vendor block. What a card holds is between the ad server and the player, which
/// reads it from the element.
class TAMZO_EXPORT TamzoCard {
 public:
  /// Never null.
  static std::shared_ptr<TamzoCard> initWithNode(DDXMLElement node) {
    return std::shared_ptr<TamzoCard>(new TamzoCard(std::move(node)));
  }

  const DDXMLElement& node() const noexcept { return node_; }

 private:
  explicit TamzoCard(DDXMLElement node) noexcept : node_(std::move(node)) {}

  DDXMLElement node_;
};

}  // namespace tamzo
