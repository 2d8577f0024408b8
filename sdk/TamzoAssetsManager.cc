#include "tamzo/sdk/TamzoAssetsManager.h"

#include "sdk/HostInUse.h"
#include "sdk/VpaidWrapperPage.h"

namespace tamzo {

Text TamzoAssetsManager::getVpaidWrapperData() {
  const HostInUse host;
  return host->vpaidWrapperTemplate ? host->vpaidWrapperTemplate()
                                    : Text::sharing(vpaidWrapperPage(), nullptr);
}

}  // namespace tamzo
