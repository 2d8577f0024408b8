// Which Linear can be played, and whether it is a JavaScript VPAID unit.

#include "tamzo/vast/TamzoVastAd.h"

#include "tamzo/sdk/TamzoLogger.h"

namespace tamzo {
namespace {

enum class Media { unusable, video, javaScriptVpaid };

Media mediaOf(const DDXMLElement& file) {
  const Text type = file.attributeValue("type");
  if (type.view() == "video/mp4" || type.view() == "video/x-mp4") {
    return Media::video;
  }
  const bool isVpaid = type.view() == "application/javascript" &&
                       file.attributeValue("apiFramework").view() == "VPAID";
  return isVpaid ? Media::javaScriptVpaid : Media::unusable;
}

}  // namespace

NodeList TamzoVastAd::newGetValidLinearNode(const NodeList& inlines) {
  NodeList linears = inlines.nodesUnderFirst("Creatives/Creative/Linear");
  if (linears.empty()) {
    return {};
  }
  // MediaFile elements rule InteractiveCreativeFile elements out, even when none of them fits.
  NodeList files = linears.nodesUnderFirst("MediaFiles/MediaFile");
  if (files.empty()) {
    files = linears.nodesUnderFirst("MediaFiles/InteractiveCreativeFile");
  }
  for (const DDXMLElement& file : files) {
    switch (mediaOf(file)) {
      case Media::video:
        TAMZO_LOG("valid linear node found!");
        return linears;
      case Media::javaScriptVpaid:
        TAMZO_LOG("valid JS vPaid linearNode found!");
        noteJavaScriptVPAID(inlines);
        return linears;
      case Media::unusable:
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
