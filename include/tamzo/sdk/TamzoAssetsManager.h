#pragma once

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"

namespace tamzo {

/// The SDK's shipped assets. Every function may be called from any thread.
class TAMZO_EXPORT TamzoAssetsManager {
 public:
  /// The template of the page that plays a JavaScript VPAID unit in a web view: the host's, or the
  /// SDK's own; nil when the host says that there is none. Its placeholders are {{IS_TAG_A_URL}},
  /// {{VAST_TAG}}, {{MOAT_DATA}} and {{MOAT_PARTNER_CODE}}.
  static Text getVpaidWrapperData();
};

}  // namespace tamzo
