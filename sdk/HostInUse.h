#pragma once

#include <memory>

#include "tamzo/sdk/TamzoHost.h"

namespace tamzo {

/// Makes a host the one in use on this thread, for as long as it lives: that of a parse. May be
/// nested, as when a host's own function parses an ad.
class HostScope {
 public:
  explicit HostScope(const TamzoHost& host) noexcept;
  ~HostScope();
  HostScope(const HostScope&) = delete;
  HostScope& operator=(const HostScope&) = delete;

 private:
  const TamzoHost* outer_;
};

/// The host that the SDK's components ask: that of the innermost HostScope on this thread, or that
/// of the process where there is none.
class HostInUse {
 public:
  HostInUse();

  const TamzoHost* operator->() const noexcept { return host_; }

 private:
  std::shared_ptr<const TamzoHost> ofProcess_;
  const TamzoHost* host_;
};

}  // namespace tamzo
