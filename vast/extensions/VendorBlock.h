#pragma once

#include <span>
#include <string_view>

#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo {

/// What an element of the vendor block is read as; docs/vendor-block.md says how each is done.
enum class VendorReading {
  text,
  integer,
  flag,
  number,
  singlePrecision,
  json,
  skipOffset,
  url,
  cards,
  hotspots,
  webSettings
};

/// What becomes of the property when a block has no such element: it reads as "", 0, false or an
/// empty list, or it is kept; and where that is said, an element without any text counts as absent.
enum class VendorAbsence { reset, kept, keptAlsoWhenEmpty };

struct VendorSetting {
  std::string_view element;   ///< a path from the block
  std::string_view property;  ///< what it is written to
  VendorReading reading;
  VendorAbsence absence;
  /// `child` is the first child of the block that the path begins with. It is nil only where
  /// absence resets.
  void (*read)(TamzoVastAd& ad, const NodeList& block, const DDXMLElement& child);
};

/// Every setting, in the order in which they are read.
std::span<const VendorSetting> vendorSettings() noexcept;

}  // namespace tamzo
