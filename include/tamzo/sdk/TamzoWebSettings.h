#pragma once

#include <memory>

#include "tamzo/base/Export.h"

namespace tamzo {

/// How the web view that shows an ad's content may behave. Everything is off until set.
class TAMZO_EXPORT TamzoWebSettings {
 public:
  static std::shared_ptr<TamzoWebSettings> init() { return std::make_shared<TamzoWebSettings>(); }

  bool canZoom() const noexcept { return canZoom_; }
  void setCanZoom(bool value) noexcept { canZoom_ = value; }
  bool canOpenExternal() const noexcept { return canOpenExternal_; }
  void setCanOpenExternal(bool value) noexcept { canOpenExternal_ = value; }
  bool canAutoPlay() const noexcept { return canAutoPlay_; }
  void setCanAutoPlay(bool value) noexcept { canAutoPlay_ = value; }
  bool canScroll() const noexcept { return canScroll_; }
  void setCanScroll(bool value) noexcept { canScroll_ = value; }
  bool shouldAskPermission() const noexcept { return shouldAskPermission_; }
  void setShouldAskPermission(bool value) noexcept { shouldAskPermission_ = value; }

 private:
  bool canZoom_ = false;
  bool canOpenExternal_ = false;
  bool canAutoPlay_ = false;
  bool canScroll_ = false;
  bool shouldAskPermission_ = false;
};

}  // namespace tamzo
