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
  explicit TamzoMediaFile(DDXMLElement node) noexcept : node_(std::move(node)) {}

  /// Never null.
  static std::shared_ptr<TamzoMediaFile> initWithNode(DDXMLElement node);

  /// The element's text, trimmed; "" when it has none.
  Text url() const;
  Text id() const;
  /// "progressive" or "streaming".
  Text delivery() const;
  /// MIME type, as written.
  Text type() const;
  Text codec() const;
  /// "VPAID" for an executable unit.
  Text apiFramework() const;

  /// Pixels.
  std::optional<std::int32_t> width() const;
  std::optional<std::int32_t> height() const;

  /// Kilobits a second.
  std::optional<std::int32_t> bitrate() const;
  std::optional<std::int32_t> minBitrate() const;
  std::optional<std::int32_t> maxBitrate() const;

  /// Bytes.
  std::optional<std::int32_t> fileSize() const;

  std::optional<bool> scalable() const;
  std::optional<bool> maintainAspectRatio() const;

 private:
  DDXMLElement node_;
};

}  // namespace tamzo
