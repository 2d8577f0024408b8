#pragma once

#include <memory>
#include <utility>

#include "xml/Export.h"
#include "xml/Text.h"

namespace tamzo {

/// One tracking URL.
class TAMZO_EXPORT TamzoTrackerEvent {
 public:
  static std::shared_ptr<TamzoTrackerEvent> init() { return std::make_shared<TamzoTrackerEvent>(); }

  /// The text of the element, untrimmed. Nil until set.
  const Text& url() const noexcept { return url_; }
  void setUrl(Text url) noexcept { url_ = std::move(url); }

  /// When to fire, in whole seconds from the start, as decimal text; "" for an event that has no
  /// time. Nil until set.
  const Text& offset() const noexcept { return offset_; }
  void setOffset(Text offset) noexcept { offset_ = std::move(offset); }

 private:
  Text url_;
  Text offset_;
};

}  // namespace tamzo
