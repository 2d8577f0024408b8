#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

/// One MediaFile element, which each getter reads when it is called. Texts are nil, and numbers
/// and flags absent, where the attribute is. Immutable: any number of threads may read it.
class TAMZO_EXPORT TamzoMediaFile {
 public:
  /// Of no element: every text is nil.
  TamzoMediaFile() noexcept = default;
  /// Of that element, MediaFile or InteractiveCreativeFile.
  explicit TamzoMediaFile(DDXMLElement node) noexcept : node_(std::move(node)) {}

  /// Of that element. Never null.
  static std::shared_ptr<TamzoMediaFile> initWithNode(DDXMLElement node);

  /// The element's text, trimmed; "" when it has none.
  Text url() const;
  /// The ad server's own id of the file.
  Text id() const;
  /// "progressive" or "streaming".
  Text delivery() const;
  /// MIME type, as written.
  Text type() const;
  /// Such as "avc1.42E01E".
  Text codec() const;
  /// "VPAID" for an executable unit.
  Text apiFramework() const;

  /// Pixels. 0 for an attribute that holds no number, as for every number here.
  std::optional<std::int32_t> width() const;
  /// Pixels.
  std::optional<std::int32_t> height() const;

  /// Kilobits a second.
  std::optional<std::int32_t> bitrate() const;
  /// Kilobits a second, of a streaming file.
  std::optional<std::int32_t> minBitrate() const;
  /// Kilobits a second, of a streaming file.
  std::optional<std::int32_t> maxBitrate() const;

  /// Bytes.
  std::optional<std::int32_t> fileSize() const;

  /// The file may be stretched.
  std::optional<bool> scalable() const;
  /// Stretching it must keep its shape.
  std::optional<bool> maintainAspectRatio() const;

 private:
  DDXMLElement node_;
};

}  // namespace tamzo
