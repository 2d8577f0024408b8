// Which updaters run for which version, and in which order. This order is decided here and nowhere
// else; where versions differ, they are meant to.

#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo {

Text TamzoVastAd::getVastVersion(const DDXMLDocument& document) {
  const NodeList roots = document.nodesForXPath("/VAST");
  return roots.empty() ? Text() : roots.at(0).attributeValue("version");
}

// The Ad elements, after what all versions do with them first; empty when there are none.
NodeList TamzoVastAd::openDocument(std::int32_t pass, const DDXMLDocument& document) {
  NodeList ads = document.nodesForXPath("/VAST/Ad");
  if (ads.empty()) {
    TAMZO_LOG("Ad element is absent!");
    setErrorCode(kNoAd);
  } else if (pass == 1) {
    updateAdID(ads);
    TAMZO_LOG("AD ID updated to: %@", adID());
  }
  return ads;
}

bool TamzoVastAd::processVASTVersion2(std::int32_t pass, const DDXMLDocument& withVASTDoc) {
  return processAd(pass, withVASTDoc, &TamzoVastAd::readWrapperVersion2,
                   &TamzoVastAd::readInLineVersion2);
}

bool TamzoVastAd::processVASTVersion3(std::int32_t pass, const DDXMLDocument& withVASTDoc) {
  return processAd(pass, withVASTDoc, &TamzoVastAd::readWrapperVersion3,
                   &TamzoVastAd::readInLineVersion3);
}

bool TamzoVastAd::processVASTVersion4(std::int32_t pass, const DDXMLDocument& withVASTDoc) {
  return processAd(pass, withVASTDoc, &TamzoVastAd::readWrapperVersion4,
                   &TamzoVastAd::readInLineVersion4);
}

// A document that holds both a Wrapper and an InLine is a Wrapper.
bool TamzoVastAd::processAd(std::int32_t pass, const DDXMLDocument& document,
                            WrapperReader readWrapper, InLineReader readInLine) {
  const NodeList ads = openDocument(pass, document);
  if (ads.empty()) {
    return false;
  }
  if (const NodeList wrappers = document.nodesForXPath("/VAST/Ad/Wrapper"); !wrappers.empty()) {
    TAMZO_LOG("This is wrapper node");
    startWrapper(pass, ads, wrappers);
    (this->*readWrapper)(document, wrappers);
    return false;
  }
  TAMZO_LOG("This is not a wrapper!");
  const NodeList inlines = document.nodesForXPath("/VAST/Ad/InLine");
  if (inlines.empty()) {
    TAMZO_LOG("Inline Node Absent");
    setErrorCode(kNoWrapperOrInLine);
    return true;
  }
  TAMZO_LOG("This is inline VAST!");
  return (this->*readInLine)(inlines);
}

// ---- Wrappers -------------------------------------------------------------------------------

void TamzoVastAd::readWrapperVersion2(const DDXMLDocument&, const NodeList& wrappers) {
  resolveNextTag(wrappers);
  updateImpressions(wrappers);
  updateTrackersOfWrapper(wrappers);
  updateAllCompanionNodes(wrappers);
  updateExtensions(wrappers);
  updateOMVerificationResources(wrappers, 2.0F);
}

void TamzoVastAd::readWrapperVersion3(const DDXMLDocument& document, const NodeList& wrappers) {
  vpaidXml()->setVastVersion(getVastVersion(document));
  resolveNextTag(wrappers);
  updateImpressions(wrappers);
  updateTrackersOfWrapper(wrappers);
  updateAllCompanionNodes(wrappers);
  updateExtensions(wrappers);
  updateOMVerificationResources(wrappers, 3.0F);
}

void TamzoVastAd::readWrapperVersion4(const DDXMLDocument& document, const NodeList& wrappers) {
  vpaidXml()->setVastVersion(getVastVersion(document));
  resolveNextTag(wrappers);
  updateImpressions(wrappers);
  updateViewableImpressions(wrappers);
  updateTrackersOfWrapper(wrappers);
  updateAllCompanionNodes(wrappers);
  updateExtensions(wrappers);
  updateExtraTrackingEvent(wrappers);
  updateOMVerificationResources(wrappers, 4.0F);
}

// ---- InLine ads -----------------------------------------------------------------------------

// Extensions before trackers; the versions after this one have it the other way round.
bool TamzoVastAd::readInLineVersion2(const NodeList& inlines) {
  updateImpressions(inlines);
  if (const NodeList linears = newGetValidLinearNode(inlines); !linears.empty()) {
    updateExtensions(inlines);
    updateOMVerificationResources(inlines, 2.0F);
    updateTrackers(linears);
    updateLinearCreative(linears);
  } else {
    noteMissingLinear();
  }
  updateAllCompanionNodes(inlines);
  return true;
}

bool TamzoVastAd::readInLineVersion3(const NodeList& inlines) {
  updateImpressions(inlines);
  updateSkipOffsetOfLinear(inlines);
  if (const NodeList linears = newGetValidLinearNode(inlines); !linears.empty()) {
    updateTrackers(linears);
    updateExtensions(inlines);
    updateOMVerificationResources(inlines, 3.0F);
    updateLinearCreative(linears);
  } else {
    noteMissingLinear();
  }
  updateAllCompanionNodes(inlines);
  return true;
}

// A JavaScript VPAID ad gets icons, duration, clicks and media files here as any other does.
bool TamzoVastAd::readInLineVersion4(const NodeList& inlines) {
  updateImpressions(inlines);
  updateViewableImpressions(inlines);
  updateAdVerification(inlines);
  updateExpires(inlines);
  updateCategory(inlines);
  if (errorCode() == kCategoryBlocked) {
    return false;
  }
  updateUniversalAdIdInfo(inlines);
  updateSkipOffsetOfLinear(inlines);
  if (const NodeList linears = newGetValidLinearNode(inlines); !linears.isNil()) {
    updateTrackers(linears);
    updateExtensions(inlines);
    updateOMVerificationResources(inlines, 4.0F);
    updateExtraTrackingEvent(inlines);
    updateIcons(linears);
    updateDuration(linears);
    updateLinearClickThrough(linears);
    updateCustomClickTracker(linears);
    hasVPAIDMedia(linears);
    updateMediaFiles(linears);
  } else {
    noteMissingLinear();
  }
  updateAllCompanionNodes(inlines);
  return true;
}

// ---- What several of them share -------------------------------------------------------------

// What versions 2 and 3 read from a Linear, which a JavaScript VPAID unit brings itself.
void TamzoVastAd::updateLinearCreative(const NodeList& linears) {
  if (jsVPaidPresent()) {
    TAMZO_LOG("JS Vpaid present");
    return;
  }
  updateIcons(linears);
  updateDuration(linears);
  updateLinearClickThrough(linears);
  updateMediaFiles(linears);
}

void TamzoVastAd::startWrapper(std::int32_t pass, const NodeList& ads, const NodeList& wrappers) {
  auto wrapperRecord = TamzoVpaidXML::initWithVpaidWrapperNode(wrappers);
  wrapperRecord->setAdNode(ads);
  if (pass > 1) {
    wrapperRecord->setOuterWrapper(vpaidXml());
  }
  setVpaidXml(std::move(wrapperRecord));
}

void TamzoVastAd::updateTrackersOfWrapper(const NodeList& wrappers) {
  if (const NodeList linears = getWrapperLinearNode(wrappers); !linears.empty()) {
    updateTrackers(linears);
  }
}

void TamzoVastAd::updateSkipOffsetOfLinear(const NodeList& inlines) {
  const Text offset = inlines.firstMatch("Creatives/Creative/Linear").attributeValue("skipoffset");
  if (offset.hasCharacters()) {
    updateSkipOffset(offset);
  }
}

void TamzoVastAd::noteMissingLinear() {
  TAMZO_LOG("No compatible linear node");
  setErrorCode(kNoUsableLinear);
}

}  // namespace tamzo
