#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "sdk/TrackerMap.h"
#include "xml/DDXMLElement.h"
#include "xml/Export.h"
#include "xml/NodeList.h"
#include "xml/Text.h"

namespace tamzo {

/// One Companion element. Texts are nil, and numbers absent, where the document has none.
struct TAMZO_EXPORT TamzoCompanion {
  struct StaticResource {
    Text creativeType;
    Text url;
  };

  Text id;
  std::optional<std::int32_t> width;   ///< pixels
  std::optional<std::int32_t> height;  ///< pixels
  Text adSlotId;
  Text apiFramework;
  Text altText;
  std::vector<StaticResource> staticResources;
  std::vector<Text> iframeResources;
  std::vector<Text> htmlResources;  ///< the markup as it stands
  Text clickThrough;
  std::vector<Text> clickTracking;
  TrackerMap trackers;

  /// True when there is something to show.
  bool hasResource() const noexcept {
    return !staticResources.empty() || !iframeResources.empty() || !htmlResources.empty();
  }
};

/// All the companions of one document. Immutable once made: any number of threads may read it.
class TAMZO_EXPORT TamzoCompanionAd {
 public:
  /// Reads every Companion element of the list, in document order. Never null.
  static std::shared_ptr<TamzoCompanionAd> initWithNode(const NodeList& companions);

  const std::vector<TamzoCompanion>& companions() const noexcept { return companions_; }

  /// The companion that fills a slot of that size, in pixels, best: of those that have something
  /// to show and fit into it, the one with the largest area, the first of equals. Null when none
  /// fits; a companion without a size never does. Owned by this record.
  const TamzoCompanion* bestForSlot(std::int32_t width, std::int32_t height) const noexcept;

 private:
  std::vector<TamzoCompanion> companions_;
};

}  // namespace tamzo
