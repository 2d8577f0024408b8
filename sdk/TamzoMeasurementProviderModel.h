#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "sdk/TrackerMap.h"
#include "xml/Export.h"
#include "xml/NodeList.h"
#include "xml/Text.h"

namespace tamzo {

/// One Verification element of IAB VAST's AdVerifications: who measures, and with what. Texts are
/// nil, and flags absent, where the document has none.
class TAMZO_EXPORT TamzoMeasurementProviderModel {
 public:
  struct JavaScriptResource {
    Text url;
    Text apiFramework;  ///< "omid" for Open Measurement
    std::optional<bool> browserOptional;
  };
  struct ExecutableResource {
    Text url;
    Text apiFramework;
    Text type;
  };

  static std::shared_ptr<TamzoMeasurementProviderModel> init() {
    return std::make_shared<TamzoMeasurementProviderModel>();
  }

  /// Reads the first element of `verification`, a list of one Verification element, into a new
  /// record. Never null.
  std::shared_ptr<TamzoMeasurementProviderModel> createMeasurementProviderFromXML(
      const NodeList& verification) const;

  const Text& vendor() const noexcept { return vendor_; }
  const std::vector<JavaScriptResource>& javaScriptResources() const noexcept {
    return javaScriptResources_;
  }
  const std::vector<ExecutableResource>& executableResources() const noexcept {
    return executableResources_;
  }
  /// For the vendor's script, as it stands.
  const Text& verificationParameters() const noexcept { return verificationParameters_; }
  /// Such as "verificationNotExecuted".
  const TrackerMap& trackers() const noexcept { return trackers_; }

 private:
  Text vendor_;
  std::vector<JavaScriptResource> javaScriptResources_;
  std::vector<ExecutableResource> executableResources_;
  Text verificationParameters_;
  TrackerMap trackers_;
};

}  // namespace tamzo
