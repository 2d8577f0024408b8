#pragma once

#include <functional>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"

namespace tamzo {

/// The SDK's shipped assets. Every function may be called from any thread.
class TAMZO_EXPORT TamzoAssetsManager {
 public:
  /// Where a host keeps its own page template; an empty function brings the SDK's back. The source
  /// may give nil: then there is no template.
  static void setVpaidWrapperSource(std::function<Text()> source);

  /// The template of the page that plays a JavaScript VPAID unit in a web view. Its placeholders
  /// are {{IS_TAG_A_URL}}, {{VAST_TAG}}, {{MOAT_DATA}} and {{MOAT_PARTNER_CODE}}.
  static Text getVpaidWrapperData();
};

}  // namespace tamzo
