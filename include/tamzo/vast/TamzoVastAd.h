#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "tamzo/base/Export.h"
#include "tamzo/base/List.h"
#include "tamzo/base/Text.h"
#include "tamzo/sdk/TamzoAdDuration.h"
#include "tamzo/sdk/TamzoCard.h"
#include "tamzo/sdk/TamzoCompanionAd.h"
#include "tamzo/sdk/TamzoExtraActions.h"
#include "tamzo/sdk/TamzoHotspot360Info.h"
#include "tamzo/sdk/TamzoMeasurementProviderModel.h"
#include "tamzo/sdk/TamzoMediaFile.h"
#include "tamzo/sdk/TamzoTrackerEvent.h"
#include "tamzo/sdk/TamzoVpaidXML.h"
#include "tamzo/vast/ErrorCodes.h"
#include "tamzo/xml/DDXMLDocument.h"
#include "tamzo/xml/NodeList.h"

namespace tamzo {

/// Elements by key; the keys are "iconClickTracking" and "iconClickThrough".
using IconMap = std::map<std::string, DDXMLElement, std::less<>>;

/// The record of one ad and the parser that fills it.
///
///     const auto ad = tamzo::TamzoVastAd::initWithVast(response);
///     if (ad->errorCode() == 0) play(ad->mediaFiles());
///
/// **Reading.** Every property of vast/TamzoVastAdProperties.def has a getter of its name and a
/// setter, and nothing else. Text and lists may be nil, which is not the same as empty: nil was
/// never written. A setter keeps the very object it is given, and the getter returns it.
///
/// **Failing.** A non-zero errorCode() marks a failed ad; what was read before the failure stays
/// in the record. Nothing derived from std::exception is thrown to the caller. What else a host's
/// own hook throws passes through.
///
/// **Threads.** A record belongs to the thread that fills it, which blocks while Wrappers are
/// fetched. Two records may be filled on two threads at once. A filled record that nobody changes
/// may be read from any number of threads.
///
/// **Ownership.** The record shares what it holds, and it may outlive everything that it was read
/// from: texts and elements keep their document alive.
class TAMZO_EXPORT TamzoVastAd {
 public:
  // ---- Entry ------------------------------------------------------------------------------

  /// Parses an ad server's response, or what it gives when it is a URL that begins with "http",
  /// and follows its Wrappers. Always returns a record, also for a failed ad; null only when there
  /// is no memory for one.
  static std::shared_ptr<TamzoVastAd> initWithVast(const Text& vast);

  /// Resets the record as its table says and parses `vast` as it stands, without the clean-up that
  /// initWithVast does first.
  void parseVast(const Text& vast);

  // ---- Operations on a finished record ------------------------------------------------------

  /// The companions of the first document of the chain that had any, so a Wrapper's before the
  /// InLine's: that preference is meant. Null when there are none.
  std::shared_ptr<TamzoCompanionAd> getMostSuitableCompanion() const;

  /// Sets `iconMap` to the click elements of the first icon below `node`. A missing one leaves its
  /// key absent.
  void getImageAd(const DDXMLElement& node);

  /// The page that plays a JavaScript VPAID ad: the SDK's template filled for this ad, which is
  /// stored in `vPaidHTML` too. "" when there is no tag or no template, or when the page would pass
  /// 128 MiB; then `vPaidHTML` keeps its value. Values are put in unescaped, one placeholder after
  /// another.
  Text getVideoWAPView();

  /// What TamzoVastAdHelper::getFirstElement returns: an element, its name notwithstanding.
  static DDXMLElement getNodeAsStringValue(const DDXMLElement& node, std::string_view withKeyPath);

  // ---- Properties ---------------------------------------------------------------------------

#define TAMZO_PROPERTY(type, name, setter, when, initial) \
  const type& name() const noexcept { return name##_; }   \
  void setter(type value) noexcept { name##_ = std::move(value); }
#include "tamzo/vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY

  // ---- Intake and dispatch ------------------------------------------------------------------

  /// `forVastString` with every `word=`, in any letter case, up to and including the next white
  /// space replaced by the bare word; a `word=` that no white space follows stays. For "xmlns"
  /// this takes the default namespace away, so that paths without prefixes match. Attributes glued
  /// to the word by it are lost, and a declaration at the end of a tag takes the ">" with it: that
  /// is meant. The same text when nothing matches.
  static Text replaceWithPattern(std::string_view word, const Text& forVastString);

  /// The version of the root VAST element; nil when there is none.
  static Text getVastVersion(const DDXMLDocument& document);

  /// Fill the record from one document. `pass` is 1 for the response itself and counts up along
  /// the chain. True: finished. False: `vastTagURI` holds the next document's URL, or `errorCode`
  /// says why not.
  bool processVASTVersion2(std::int32_t pass, const DDXMLDocument& withVASTDoc);
  bool processVASTVersion3(std::int32_t pass, const DDXMLDocument& withVASTDoc);
  bool processVASTVersion4(std::int32_t pass, const DDXMLDocument& withVASTDoc);

  /// The text that `withKeyPath` finds first under the first node; "" when it finds none.
  static Text getSingleValueFromNode(const NodeList& nodes, const XPath& withKeyPath);
  /// What `withKeyPath` finds under the first node; nil when the list is nil or empty.
  static NodeList getArrayFromNode(const NodeList& nodes, const XPath& withKeyPath);

  /// The text of a Wrapper's VASTAdTagURI, untrimmed; "" when it has none.
  static Text getVastTagURI(const NodeList& wrappers);
  /// The Linear elements of a Wrapper, or of an InLine: any child of an Ad will do. Nil when there
  /// are none.
  static NodeList getWrapperLinearNode(const NodeList& nodes);

  // ---- Updaters -----------------------------------------------------------------------------
  // Each reads one part of the document from the first node of the list that it is given, and
  // writes properties. What is absent is not written, except where a comment says so.

  // Linear creative
  /// All Linear elements of the first InLine when the first of them can be played, otherwise nil.
  /// Notes a JavaScript VPAID unit on the way.
  NodeList newGetValidLinearNode(const NodeList& inlines);
  /// Sets `jsVPaidPresent` when the first InteractiveCreativeFile has any text.
  void hasVPAIDMedia(const NodeList& linears);
  void updateMediaFiles(const NodeList& linears);
  /// Replaces or appends; throws std::out_of_range for an index beyond the end.
  void addOrSetMediaFile(const DDXMLElement& element, std::int32_t withIndex);
  void updateDuration(const NodeList& linears);
  /// "HH:MM:SS", or a percentage of the duration that the record holds at this moment.
  void updateSkipOffset(const Text& offset);
  /// Throws std::invalid_argument for a Tracking element without an event name.
  void updateTrackers(const NodeList& linears);
  void updateAdID(const NodeList& ads);
  void updateImpressions(const NodeList& nodes);
  void updateLinearClickThrough(const NodeList& linears);
  void updateCustomClickTracker(const NodeList& linears);
  void updateIcons(const NodeList& linears);
  /// Puts an icon in `extraActions`: in place of the last icon of that program, or at the end.
  void checkProgramExist(const Text& program, const DDXMLElement& withElement);

  // Measurement and ad policy
  void updateViewableImpressions(const NodeList& nodes);
  void updateAdVerification(const NodeList& nodes);
  /// Below 4.1 the providers are those in Extensions, from 4.1 on (or for a version that is not a
  /// number) those of the ad itself. The processors pass 4.0 at most: that is meant.
  void updateOMVerificationResources(const NodeList& nodes, float vastVerrsion);
  void updateMoatAdVerification(const NodeList& adVerifications);
  /// Throws std::out_of_range for an empty list that is not nil.
  void updateExtraTrackingEvent(const NodeList& nodes);
  /// Throws std::invalid_argument for a Tracking element without an event name.
  void updateExtraTrackingEvent_REC(const NodeList& trackingNodes);
  void updateExpires(const NodeList& nodes);
  void updateCategory(const NodeList& nodes);
  static bool isCategoryBlocked(const List<Text>& categories);
  void updateUniversalAdIdInfo(const NodeList& nodes);
  /// Part of the interface; reads and writes nothing.
  void updateSurvey(const NodeList& /*nodes*/) {}

  // Extensions and companions
  /// Throws std::out_of_range for an empty list.
  void updateExtensions(const NodeList& nodes);
  void updateTamzoExtensions(const NodeList& vendorNodes);
  void updateAdditionalWebSetting(const NodeList& settings);
  /// Allows replay. `url` is what to call then, in place of what was to be called before.
  void updateReplay(const Text& url);
  void updateAllCompanionNodes(const NodeList& nodes);
  void updateCompanion(const NodeList& companions);

 private:
  void followChain();
  Text readTagURI();
  bool process(std::int32_t pass, std::int32_t version, const DDXMLDocument& document);
  using WrapperReader = void (TamzoVastAd::*)(const DDXMLDocument&, const NodeList& wrappers);
  using InLineReader = bool (TamzoVastAd::*)(const NodeList& inlines);
  bool processAd(std::int32_t pass, const DDXMLDocument& document, WrapperReader readWrapper,
                 InLineReader readInLine);
  void readWrapperVersion2(const DDXMLDocument& document, const NodeList& wrappers);
  void readWrapperVersion3(const DDXMLDocument& document, const NodeList& wrappers);
  void readWrapperVersion4(const DDXMLDocument& document, const NodeList& wrappers);
  bool readInLineVersion2(const NodeList& inlines);
  bool readInLineVersion3(const NodeList& inlines);
  bool readInLineVersion4(const NodeList& inlines);
  void updateTrackersOfWrapper(const NodeList& wrappers);
  NodeList openDocument(std::int32_t pass, const DDXMLDocument& document);
  void startWrapper(std::int32_t pass, const NodeList& ads, const NodeList& wrappers);
  void resolveNextTag(const NodeList& wrappers);
  void updateSkipOffsetOfLinear(const NodeList& inlines);
  void updateLinearCreative(const NodeList& linears);
  void noteMissingLinear();
  void noteJavaScriptVPAID(const NodeList& inlines);
  TrackerMap& trackerMap();

#define TAMZO_PROPERTY(type, name, setter, when, initial) type name##_{};
#include "tamzo/vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
};

}  // namespace tamzo
