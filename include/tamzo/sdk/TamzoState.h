#pragma once

#include <memory>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"
#include "tamzo/sdk/TamzoWebSettings.h"

namespace tamzo {

/// The SDK's class-level state, as far as the parser asks for it. Every function may be called
/// from any thread at any time, and throws what the host's own functions throw, and std::bad_alloc.
class TAMZO_EXPORT TamzoState {
 public:
  /// What the host says: category codes separated by ",", taken as they stand, so that a blank
  /// after a comma belongs to the code that follows. Nil blocks nothing.
  static Text getBlockedAdCategories();

  /// What the host says; never nil.
  static Text getSessionId();

  /// The settings of the last vendor block that had any, in whatever parse; null before the first.
  static std::shared_ptr<const TamzoWebSettings> getTamzoWebSettings();
  /// Publishes settings for the whole SDK, as every such vendor block does.
  static void setTamzoWebSettings(std::shared_ptr<const TamzoWebSettings> settings);
};

}  // namespace tamzo
