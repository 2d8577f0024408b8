#include "tamzo/sdk/TamzoState.h"

#include <utility>

#include "base/HookSlot.h"
#include "base/NeverDestroyed.h"
#include "sdk/HostInUse.h"

namespace tamzo {
namespace {

using SharedSettings = std::shared_ptr<const TamzoWebSettings>;

HookSlot<SharedSettings>& publishedSettings() noexcept {
  static NeverDestroyed<HookSlot<SharedSettings>> slot;
  return *slot;
}

}  // namespace

Text TamzoState::getBlockedAdCategories() {
  const HostInUse host;
  return host->blockedAdCategories ? host->blockedAdCategories() : Text();
}

Text TamzoState::getSessionId() {
  const HostInUse host;
  Text id = host->sessionId ? host->sessionId() : Text();
  return id.isNil() ? Text::literal("") : id;
}

std::shared_ptr<const TamzoWebSettings> TamzoState::getTamzoWebSettings() {
  return *publishedSettings().get();
}

void TamzoState::setTamzoWebSettings(std::shared_ptr<const TamzoWebSettings> settings) {
  publishedSettings().set(std::move(settings));
}

}  // namespace tamzo
