#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"
#include "tamzo/sdk/TamzoTrackerEvent.h"
#include "tamzo/xml/NodeList.h"

namespace tamzo {

/// One Verification element of IAB VAST's AdVerifications: who measures, and with what. Each getter
/// reads the element when it is called; texts are nil, and flags absent, where it has none.
/// Immutable: any number of threads may read it.
class TAMZO_EXPORT TamzoMeasurementProviderModel {
 public:
  /// A script that measures.
  struct JavaScriptResource {
    Text url;                             ///< trimmed
    Text apiFramework;                    ///< "omid" for Open Measurement
    std::optional<bool> browserOptional;  ///< it runs outside a browser too
  };
  /// A program that measures.
  struct ExecutableResource {
    Text url;           ///< trimmed
    Text apiFramework;  ///< who runs it
    Text type;          ///< MIME type, as written
  };

  /// Of no element.
  static std::shared_ptr<TamzoMeasurementProviderModel> init() {
    return std::make_shared<TamzoMeasurementProviderModel>();
  }

  /// A new record of the first element of `verification`, a list of one Verification element.
  /// Never null.
  std::shared_ptr<TamzoMeasurementProviderModel> createMeasurementProviderFromXML(
      const NodeList& verification) const;

  /// Who measures, such as "company.com-omid".
  Text vendor() const;
  /// In document order.
  std::vector<JavaScriptResource> javaScriptResources() const;
  /// In document order.
  std::vector<ExecutableResource> executableResources() const;
  /// For the vendor's script, as it stands.
  Text verificationParameters() const;
  /// Such as "verificationNotExecuted".
  TrackerMap trackers() const;

 private:
  DDXMLElement node_;
};

}  // namespace tamzo
