// Which Linear can be played, and whether it is a JavaScript VPAID unit.

#include "vast/linear/LinearSelection.h"

#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo {

MediaUse mediaUseOf(const DDXMLElement& file) {
  const Text type = file.attributeValue("type");
  if (type.view() == "video/mp4" || type.view() == "video/x-mp4") {
    return MediaUse::video;
  }
  const bool isVpaid = type.view() == "application/javascript" &&
                       file.attributeValue("apiFramework").view() == "VPAID";
  return isVpaid ? MediaUse::javaScriptVpaid : MediaUse::unusable;
}

NodeList decidingFilesOf(const NodeList& linears) {
  NodeList files = linears.nodesUnderFirst("MediaFiles/MediaFile");
  return files.empty() ? linears.nodesUnderFirst("MediaFiles/InteractiveCreativeFile") : files;
}

NodeList TamzoVastAd::newGetValidLinearNode(const NodeList& inlines) {
  NodeList linears = inlines.nodesUnderFirst("Creatives/Creative/Linear");
  if (linears.empty()) {
    return {};
  }
  for (const DDXMLElement& file : decidingFilesOf(linears)) {
    switch (mediaUseOf(file)) {
      case MediaUse::video:
        TAMZO_LOG("valid linear node found!");
        return linears;
      case MediaUse::javaScriptVpaid:
        TAMZO_LOG("valid JS vPaid linearNode found!");
        noteJavaScriptVPAID(inlines);
        return linears;
      case MediaUse::unusable:
        break;
    }
  }
  return {};
}

void TamzoVastAd::noteJavaScriptVPAID(const NodeList& inlines) {
  setJsVPaidPresent(true);
  if (vpaidXml() == nullptr) {
    return;
  }
  vpaidXml()->setVastVersion(vpaidVastVersion());
  const Text document = vpaidXml()->createInlineVast(inlines, adID());
  if (document.hasCharacters()) {
    setVastTagURI(document);
  }
}

void TamzoVastAd::hasVPAIDMedia(const NodeList& linears) {
  const NodeList files = linears.nodesUnderFirst("MediaFiles/InteractiveCreativeFile");
  if (!files.empty() && files.at(0).stringValue().hasCharacters()) {
    setJsVPaidPresent(true);
  }
}

}  // namespace tamzo
