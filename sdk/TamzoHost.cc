#include "tamzo/sdk/TamzoHost.h"

#include <utility>

#include "base/HookSlot.h"
#include "base/NeverDestroyed.h"
#include "sdk/HostInUse.h"

namespace tamzo {
namespace {

thread_local const TamzoHost* innermost = nullptr;

HookSlot<TamzoHost>& hostOfProcess() noexcept {
  static NeverDestroyed<HookSlot<TamzoHost>> slot;
  return *slot;
}

}  // namespace

void TamzoHost::set(TamzoHost host) { hostOfProcess().set(std::move(host)); }

std::shared_ptr<const TamzoHost> TamzoHost::get() noexcept { return hostOfProcess().get(); }

HostScope::HostScope(const TamzoHost& host) noexcept : outer_(innermost) { innermost = &host; }
HostScope::~HostScope() { innermost = outer_; }

HostInUse::HostInUse()
    : ofProcess_(innermost == nullptr ? TamzoHost::get() : nullptr),
      host_(innermost == nullptr ? ofProcess_.get() : innermost) {}

}  // namespace tamzo
