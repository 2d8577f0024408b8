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
  struct StaticResource {
    Text creativeType;
    Text url;
  };

  explicit TamzoCompanion(DDXMLElement node) noexcept : node_(std::move(node)) {}

  Text id() const;
  /// Pixels.
  std::optional<std::int32_t> width() const;
  std::optional<std::int32_t> height() const;
  Text adSlotId() const;
  Text apiFramework() const;
  Text altText() const;
  std::vector<StaticResource> staticResources() const;
  std::vector<Text> iframeResources() const;
  /// The markup as it stands.
  std::vector<Text> htmlResources() const;
  Text clickThrough() const;
  std::vector<Text> clickTracking() const;
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

  const std::vector<TamzoCompanion>& companions() const noexcept { return companions_; }

  /// The companion that fills a slot of that size, in pixels, best: of those that have something
  /// to show and fit into it, the one with the largest area, the first of equals. Null when none
  /// fits; a companion without a size never does. Owned by this record.
  const TamzoCompanion* bestForSlot(std::int32_t width, std::int32_t height) const;

 private:
  std::vector<TamzoCompanion> companions_;
};

}  // namespace tamzo
