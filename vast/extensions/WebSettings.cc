#include "tamzo/vast/TamzoVastAd.h"

#include <utility>

#include "base/Numbers.h"
#include "tamzo/sdk/TamzoState.h"
#include "tamzo/sdk/TamzoWebSettings.h"

namespace tamzo {

// A flag that the block does not name is off. The whole SDK sees the settings published last.
void TamzoVastAd::updateAdditionalWebSetting(const NodeList& settings) {
  if (settings.empty()) {
    return;
  }
  const auto flag = [&settings](const XPath& name) {
    return boolValue(getSingleValueFromNode(settings, name));
  };
  setCanZoom(flag("canZoom"));
  setCanOpenExternal(flag("canOpenExternal"));
  setCanAutoPlay(flag("canAutoPlay"));
  setCanScroll(flag("canScroll"));
  setShouldAskPermission(flag("shouldAskPermission"));

  auto published = TamzoWebSettings::init();
  published->setCanZoom(canZoom());
  published->setCanOpenExternal(canOpenExternal());
  published->setCanAutoPlay(canAutoPlay());
  published->setCanScroll(canScroll());
  published->setShouldAskPermission(shouldAskPermission());
  TamzoState::setTamzoWebSettings(std::move(published));
}

}  // namespace tamzo
