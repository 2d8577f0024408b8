#pragma once

#include <functional>
#include <memory>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"
#include "tamzo/sdk/TamzoWebSettings.h"

namespace tamzo {

/// The SDK's class-level state, as far as the parser asks for it. Every function may be called
/// from any thread at any time.
class TAMZO_EXPORT TamzoState {
 public:
  /// Where a host app keeps these values. An empty function leaves the default in force.
  struct Source {
    std::function<Text()> blockedAdCategories;  ///< default: nil
    std::function<Text()> sessionId;            ///< default: ""
  };
  static void setSource(Source source);

  /// Category codes separated by ",", taken as they stand: a blank after a comma belongs to the
  /// code that follows. Nil blocks nothing.
  static Text getBlockedAdCategories();

  /// Never nil: a source that gives nil reads as "".
  static Text getSessionId();

  /// The settings of the last vendor block that had any; null before the first.
  static std::shared_ptr<const TamzoWebSettings> getTamzoWebSettings();
  static void setTamzoWebSettings(std::shared_ptr<const TamzoWebSettings> settings);
};

}  // namespace tamzo
