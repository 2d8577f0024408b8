#include "sdk/TamzoMeasurementProviderModel.h"

#include "sdk/TrimmedText.h"

namespace tamzo {

std::shared_ptr<TamzoMeasurementProviderModel>
TamzoMeasurementProviderModel::createMeasurementProviderFromXML(
    const NodeList& verification) const {
  auto provider = init();
  if (verification.empty()) {
    return provider;
  }
  const DDXMLElement node = verification.at(0);
  provider->vendor_ = node.attributeValue("vendor");
  for (const DDXMLElement& resource : node.nodesForXPath("JavaScriptResource")) {
    provider->javaScriptResources_.push_back({trimmedText(resource),
                                              resource.attributeValue("apiFramework"),
                                              boolAttribute(resource, "browserOptional")});
  }
  for (const DDXMLElement& resource : node.nodesForXPath("ExecutableResource")) {
    provider->executableResources_.push_back({trimmedText(resource),
                                              resource.attributeValue("apiFramework"),
                                              resource.attributeValue("type")});
  }
  provider->verificationParameters_ =
      node.firstNodeForXPath("VerificationParameters").stringValue();
  provider->trackers_ = trackersUnder(node);
  return provider;
}

}  // namespace tamzo
