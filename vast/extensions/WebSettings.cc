#include "tamzo/vast/TamzoVastAd.h"

#include <array>
#include <string_view>
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
  constexpr std::array<std::string_view, 5> kFlags{"canAutoPlay", "canOpenExternal", "canScroll",
                                                   "canZoom", "shouldAskPermission"};
  const auto flags = settings.at(0).firstChildren(kFlags);
  setCanAutoPlay(boolValue(flags[0].stringValue()));
  setCanOpenExternal(boolValue(flags[1].stringValue()));
  setCanScroll(boolValue(flags[2].stringValue()));
  setCanZoom(boolValue(flags[3].stringValue()));
  setShouldAskPermission(boolValue(flags[4].stringValue()));

  auto published = TamzoWebSettings::init();
  published->setCanZoom(canZoom());
  published->setCanOpenExternal(canOpenExternal());
  published->setCanAutoPlay(canAutoPlay());
  published->setCanScroll(canScroll());
  published->setShouldAskPermission(shouldAskPermission());
  TamzoState::setTamzoWebSettings(std::move(published));
}

}  // namespace tamzo
