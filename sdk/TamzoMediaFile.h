#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "xml/DDXMLElement.h"
#include "xml/Export.h"
#include "xml/Text.h"

namespace tamzo {

/// One MediaFile element. Texts are nil, and numbers and flags absent, where the attribute is. A
/// plain record: reading it from several threads is safe.
struct TAMZO_EXPORT TamzoMediaFile {
  static std::shared_ptr<TamzoMediaFile> initWithNode(const DDXMLElement& node);

  Text url;  ///< The element's text, trimmed; "" when it has none.
  Text id;
  Text delivery;  ///< "progressive" or "streaming"
  Text type;      ///< MIME type, as written
  Text codec;
  Text apiFramework;                       ///< "VPAID" for an executable unit
  std::optional<std::int32_t> width;       ///< pixels
  std::optional<std::int32_t> height;      ///< pixels
  std::optional<std::int32_t> bitrate;     ///< kilobits a second
  std::optional<std::int32_t> minBitrate;  ///< kilobits a second
  std::optional<std::int32_t> maxBitrate;  ///< kilobits a second
  std::optional<std::int32_t> fileSize;    ///< bytes
  std::optional<bool> scalable;
  std::optional<bool> maintainAspectRatio;
};

}  // namespace tamzo
