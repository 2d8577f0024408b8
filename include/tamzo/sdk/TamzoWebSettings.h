#pragma once

#include <memory>

#include "tamzo/base/Export.h"

namespace tamzo {

/// How the web view that shows an ad's content may behave: the flags of the vendor's
/// `AdditionalWebSettings`, published by TamzoState::setTamzoWebSettings() for the whole SDK.
/// Everything is off until set.
///
/// A plain value without locks: filled by one thread, and read by any once it is published.
class TAMZO_EXPORT TamzoWebSettings {
 public:
  /// Everything off. Never null.
  static std::shared_ptr<TamzoWebSettings> init() { return std::make_shared<TamzoWebSettings>(); }

  /// The viewer may zoom.
  bool canZoom() const noexcept { return canZoom_; }
  /// Sets canZoom().
  void setCanZoom(bool value) noexcept { canZoom_ = value; }

  /// Links may leave the app for a browser.
  bool canOpenExternal() const noexcept { return canOpenExternal_; }
  /// Sets canOpenExternal().
  void setCanOpenExternal(bool value) noexcept { canOpenExternal_ = value; }

  /// Media may start without a touch.
  bool canAutoPlay() const noexcept { return canAutoPlay_; }
  /// Sets canAutoPlay().
  void setCanAutoPlay(bool value) noexcept { canAutoPlay_ = value; }

  /// The viewer may scroll.
  bool canScroll() const noexcept { return canScroll_; }
  /// Sets canScroll().
  void setCanScroll(bool value) noexcept { canScroll_ = value; }

  /// The viewer is asked before anything that needs a permission.
  bool shouldAskPermission() const noexcept { return shouldAskPermission_; }
  /// Sets shouldAskPermission().
  void setShouldAskPermission(bool value) noexcept { shouldAskPermission_ = value; }

 private:
  bool canZoom_ = false;
  bool canOpenExternal_ = false;
  bool canAutoPlay_ = false;
  bool canScroll_ = false;
  bool shouldAskPermission_ = false;
};

}  // namespace tamzo
