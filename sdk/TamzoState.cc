#include "tamzo/sdk/TamzoState.h"

#include <utility>

#include "base/HookSlot.h"

namespace tamzo {
namespace {

HookSlot<TamzoState::Source>& sourceSlot() {
  static HookSlot<TamzoState::Source> slot;
  return slot;
}

HookSlot<std::shared_ptr<const TamzoWebSettings>>& settingsSlot() {
  static HookSlot<std::shared_ptr<const TamzoWebSettings>> slot;
  return slot;
}

}  // namespace

void TamzoState::setSource(Source source) { sourceSlot().set(std::move(source)); }

Text TamzoState::getBlockedAdCategories() {
  const auto source = sourceSlot().get();
  return source->blockedAdCategories ? source->blockedAdCategories() : Text();
}

Text TamzoState::getSessionId() {
  const auto source = sourceSlot().get();
  Text id = source->sessionId ? source->sessionId() : Text();
  return id.isNil() ? Text::literal("") : id;
}

std::shared_ptr<const TamzoWebSettings> TamzoState::getTamzoWebSettings() {
  return *settingsSlot().get();
}

void TamzoState::setTamzoWebSettings(std::shared_ptr<const TamzoWebSettings> settings) {
  settingsSlot().set(std::move(settings));
}

}  // namespace tamzo
