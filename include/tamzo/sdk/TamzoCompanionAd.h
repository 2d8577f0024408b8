#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"
#include "tamzo/sdk/TamzoTrackerEvent.h"
#include "tamzo/xml/DDXMLElement.h"
#include "tamzo/xml/NodeList.h"

namespace tamzo {

/// One Companion element, which each getter reads when it is called. Texts are nil, and numbers
/// absent, where the document has none. Immutable: any number of threads may read it.
class TAMZO_EXPORT TamzoCompanion {
 public:
  /// An image or the like to show.
  struct StaticResource {
    Text creativeType;  ///< MIME type, as written
    Text url;           ///< trimmed
  };

  /// Of that element; of nil, everything is absent.
  explicit TamzoCompanion(DDXMLElement node) noexcept : node_(std::move(node)) {}

  /// The ad server's own id of the companion.
  Text id() const;
  /// Pixels. 0 for an attribute that holds no number.
  std::optional<std::int32_t> width() const;
  /// Pixels. 0 for an attribute that holds no number.
  std::optional<std::int32_t> height() const;
  /// The slot of the page that it is meant for.
  Text adSlotId() const;
  /// "VPAID" or "SIMID", for a companion that runs.
  Text apiFramework() const;
  /// What stands in for the picture, trimmed.
  Text altText() const;
  /// The images, in document order.
  std::vector<StaticResource> staticResources() const;
  /// URLs of pages to show in a frame, trimmed, in document order.
  std::vector<Text> iframeResources() const;
  /// Markup to show, as it stands, in document order.
  std::vector<Text> htmlResources() const;
  /// Where a click on it leads, trimmed.
  Text clickThrough() const;
  /// What to call on a click, trimmed, in document order.
  std::vector<Text> clickTracking() const;
  /// What to call on its events, of which IAB VAST knows "creativeView".
  TrackerMap trackers() const;

  /// True when there is something to show.
  bool hasResource() const;

 private:
  DDXMLElement node_;
};

/// All the companions of one document. Immutable once made: any number of threads may read it.
class TAMZO_EXPORT TamzoCompanionAd {
 public:
  /// Reads every Companion element of the list, in document order. Never null.
  static std::shared_ptr<TamzoCompanionAd> initWithNode(const NodeList& companions);

  /// In document order.
  const std::vector<TamzoCompanion>& companions() const noexcept TAMZO_LIFETIMEBOUND {
    return companions_;
  }

  /// The companion that fills a slot of that size, in pixels, best: of those that have something
  /// to show and fit into it, the one with the largest area, the first of equals. Null when none
  /// fits; a companion without a size never does. Owned by this record.
  const TamzoCompanion* bestForSlot(std::int32_t width,
                                    std::int32_t height) const TAMZO_LIFETIMEBOUND;

 private:
  std::vector<TamzoCompanion> companions_;
};

}  // namespace tamzo
