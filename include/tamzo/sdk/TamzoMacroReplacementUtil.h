#pragma once

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"

namespace tamzo {

/// What macros are filled from: what the ad server told of the request and the player. A
/// TamzoVastAd is one, whose properties of these names these are; nil and "" count as not known.
class TAMZO_EXPORT MacroValues {
 public:
  /// [SERVERUA].
  virtual const Text& serverUA() const noexcept = 0;
  /// [CLIENTUA].
  virtual const Text& clientUA() const noexcept = 0;
  /// [DEVICEIP].
  virtual const Text& deviceIP() const noexcept = 0;
  /// [OMIDPARTNER].
  virtual const Text& omidPartner() const noexcept = 0;
  /// [PLAYERCAPABILITIES], a list separated by ",".
  virtual const Text& playerCapability() const noexcept = 0;
  /// [INVENTORYSTATE], a list separated by ",".
  virtual const Text& inventoryState() const noexcept = 0;
  /// [GDPRCONSENT]; known, it stands in [REGULATIONS] as "gdpr".
  virtual const Text& GDPRConsentInfo() const noexcept = 0;
  /// Stands in [REGULATIONS] as "coppa".
  virtual bool isCoppaEnabled() const noexcept = 0;
  /// [VASTVERSIONS], a list separated by ",".
  virtual const Text& vastVersions() const noexcept = 0;
  /// [APIFRAMEWORKS], a list separated by ",".
  virtual const Text& apiFrameworks() const noexcept = 0;
  /// [VERIFICATIONVENDORS], a list separated by ",".
  virtual const Text& verificationVendors() const noexcept = 0;
  /// [EXTENSIONS], a list separated by ",".
  virtual const Text& supportedExtension() const noexcept = 0;
  /// [MEDIAMIME], a list separated by ",".
  virtual const Text& mimeType() const noexcept = 0;
  /// [CLICKTYPE].
  virtual const Text& clickType() const noexcept = 0;

 protected:
  // Held and destroyed as what it is.
  ~MacroValues() = default;
};

/// Fills the macros of IAB VAST 4.3 in a URL. Every function may be called from any thread.
class TAMZO_EXPORT TamzoMacroReplacementUtil {
 public:
  /// The text with each known macro, "[NAME]" in capitals, replaced by its value, percent-encoded
  /// as encodeURIComponent does; "-1" stands for a value that is not known. One pass from left to
  /// right: what is put in is not looked at again. Brackets around anything else stay as they are,
  /// and so does a text without macros, nil and "" included. Where the values of one text would
  /// come to more than 1 MiB, the macros after that stay too. A host's TamzoHost::replaceMacros
  /// takes the place of all this.
  static Text replaceVASTMacros(const Text& text, const MacroValues& fromVast);
};

}  // namespace tamzo
