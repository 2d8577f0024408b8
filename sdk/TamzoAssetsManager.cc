#include "tamzo/sdk/TamzoAssetsManager.h"

#include <utility>

#include "base/HookSlot.h"
#include "sdk/VpaidWrapperPage.h"

namespace tamzo {
namespace {

HookSlot<std::function<Text()>>& sourceSlot() {
  static HookSlot<std::function<Text()>> slot;
  return slot;
}

}  // namespace

void TamzoAssetsManager::setVpaidWrapperSource(std::function<Text()> source) {
  sourceSlot().set(std::move(source));
}

Text TamzoAssetsManager::getVpaidWrapperData() {
  const auto source = sourceSlot().get();
  return *source ? (*source)() : Text::sharing(vpaidWrapperPage(), nullptr);
}

}  // namespace tamzo
