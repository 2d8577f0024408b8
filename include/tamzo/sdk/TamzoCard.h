#pragma once

#include <memory>
#include <utility>

#include "tamzo/base/Export.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

/// One card of the vendor block. What a card holds is between the ad server and the player, which
/// reads it from the element.
///
/// Immutable: any number of threads may read one. Keeps the element's document alive.
class TAMZO_EXPORT TamzoCard {
 public:
  /// A card of that element, whatever it holds. Never null.
  static std::shared_ptr<TamzoCard> initWithNode(DDXMLElement node) {
    return std::shared_ptr<TamzoCard>(new TamzoCard(std::move(node)));
  }

  /// The Card element; nil only where the card was made of nil.
  const DDXMLElement& node() const noexcept TAMZO_LIFETIMEBOUND { return node_; }

 private:
  explicit TamzoCard(DDXMLElement node) noexcept : node_(std::move(node)) {}

  DDXMLElement node_;
};

}  // namespace tamzo
