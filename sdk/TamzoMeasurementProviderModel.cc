#include "tamzo/sdk/TamzoMeasurementProviderModel.h"

#include "sdk/ElementText.h"

namespace tamzo {

std::shared_ptr<TamzoMeasurementProviderModel>
TamzoMeasurementProviderModel::createMeasurementProviderFromXML(
    const NodeList& verification) const {
  auto provider = init();
  if (!verification.empty()) {
    provider->node_ = verification.at(0);
  }
  return provider;
}

Text TamzoMeasurementProviderModel::vendor() const { return node_.attributeValue("vendor"); }

std::vector<TamzoMeasurementProviderModel::JavaScriptResource>
TamzoMeasurementProviderModel::javaScriptResources() const {
  std::vector<JavaScriptResource> resources;
  for (const DDXMLElement& resource : node_.nodesForXPath("JavaScriptResource")) {
    resources.push_back({trimmedText(resource), resource.attributeValue("apiFramework"),
                         boolAttribute(resource, "browserOptional")});
  }
  return resources;
}

std::vector<TamzoMeasurementProviderModel::ExecutableResource>
TamzoMeasurementProviderModel::executableResources() const {
  std::vector<ExecutableResource> resources;
  for (const DDXMLElement& resource : node_.nodesForXPath("ExecutableResource")) {
    resources.push_back({trimmedText(resource), resource.attributeValue("apiFramework"),
                         resource.attributeValue("type")});
  }
  return resources;
}

Text TamzoMeasurementProviderModel::verificationParameters() const {
  return node_.firstNodeForXPath("VerificationParameters").stringValue();
}

TrackerMap TamzoMeasurementProviderModel::trackers() const { return trackersUnder(node_); }

}  // namespace tamzo
