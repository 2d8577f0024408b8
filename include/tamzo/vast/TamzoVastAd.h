#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string_view>

#include "tamzo/base/Export.h"
#include "tamzo/base/List.h"
#include "tamzo/base/Text.h"
#include "tamzo/sdk/TamzoHost.h"
#include "tamzo/vast/ErrorCodes.h"
#include "tamzo/vast/ParseOptions.h"
#include "tamzo/vast/TamzoVastAdProperties.h"
#include "tamzo/xml/DDXMLDocument.h"
#include "tamzo/xml/NodeList.h"

namespace tamzo {

class MoatLog;

/// The record of one ad and the parser that fills it.
///
///     const auto ad = tamzo::TamzoVastAd::initWithVast(response);
///     if (ad->errorCode() == 0 && !ad->mediaFiles()->empty()) play(ad->mediaFiles());
///
/// **Reading.** The properties are those of TamzoVastAdProperties: each has a getter of its name
/// and a setter. Text and lists may be nil, which is not the same as empty: nil was never written.
///
/// **Failing.** A non-zero errorCode() marks a failed ad; what was read before the failure stays
/// in the record. 0 says that nothing failed, and not that there is something to play: see
/// kNoError. Nothing derived from std::exception leaves initWithVast(), parseVast(),
/// getVideoWAPView(), getImageAd() and getMostSuitableCompanion(), whatever a host's functions
/// throw and wherever memory runs out. What else a host's own function throws passes through.
///
/// **Threads.** A record belongs to the thread that fills it, which blocks while Wrappers are
/// fetched. Two records may be filled on two threads at once. A filled record that nobody changes
/// may be read from any number of threads.
///
/// **Ownership.** The record shares what it holds, and it may outlive everything that it was read
/// from: texts and elements keep their document alive. It is held by a std::shared_ptr and is not
/// copied.
class TAMZO_EXPORT TamzoVastAd final : public TamzoVastAdProperties {
 public:
  /// @name Parsing
  /// @{

  /// Parses an ad server's response, or what it gives when it is a URL that begins with "http",
  /// and follows its Wrappers. Always returns a record, also for a failed ad; null only when there
  /// is no memory for one. The host is that of the process.
  static std::shared_ptr<TamzoVastAd> initWithVast(const Text& vast);
  /// The same with a host of its own, which is used until this returns.
  static std::shared_ptr<TamzoVastAd> initWithVast(const Text& vast, const TamzoHost& host);
  /// The same with a host, a deadline, a cancellation and an observer, as far as they are given.
  static std::shared_ptr<TamzoVastAd> initWithVast(const Text& vast, const ParseOptions& options);

  /// Resets the record as its properties say and parses `vast` as it stands, without the clean-up
  /// that initWithVast() does first. `vast` may be a text of this record. The host is that of the
  /// process.
  ///
  /// A record may be parsed again, and some of the last parse stays: a record with isImaEnabled()
  /// set reads nothing and ends with code 0, until a host sets it back; the categories gather in
  /// categoryArray(), and an old one that is blocked ends each parse of a VAST 4 ad that has any.
  void parseVast(const Text& vast);
  /// The same with a host of its own, which is used until this returns.
  void parseVast(const Text& vast, const TamzoHost& host);
  /// The same with a host, a deadline, a cancellation and an observer, as far as they are given.
  void parseVast(const Text& vast, const ParseOptions& options);

  /// A record of which nothing was written yet: texts are nil, numbers 0, flags false.
  TamzoVastAd() noexcept = default;
  /// Not copied: share the std::shared_ptr that initWithVast() gives.
  TamzoVastAd(const TamzoVastAd&) = delete;
  TamzoVastAd& operator=(const TamzoVastAd&) = delete;

  /// @}

  /// @name Operations on a finished record
  /// @{

  /// The companions of the first document of the chain that had any, so a Wrapper's before the
  /// InLine's: that preference is meant. Null when there are none.
  std::shared_ptr<TamzoCompanionAd> getMostSuitableCompanion() const noexcept;

  /// Sets iconMap() to a new map of the click elements of the first icon below `node`, which may be
  /// an element of this record. A missing one leaves its key absent; a nil node leaves both absent.
  /// Null where memory runs out.
  void getImageAd(const DDXMLElement& node);

  /// The page that plays a JavaScript VPAID ad: the SDK's template filled for this ad, which is
  /// stored in vPaidHTML() too. "" when there is no tag or no template, when the page would pass 16
  /// times the template and all values together (the tag, the session's id, analyticsData() and
  /// analyticsKey()), or 128 MiB, when a function of the host throws a std::exception or when
  /// memory runs out; then vPaidHTML() keeps its value. Values are put in unescaped, one
  /// placeholder after another: one that a value brings of a later one is filled too. The host is
  /// that of the process.
  Text getVideoWAPView();
  /// The same with a host of its own, which is used until this returns.
  Text getVideoWAPView(const TamzoHost& host);

  /// What TamzoVastAdHelper::getFirstElement() returns: an element, its name notwithstanding.
  static DDXMLElement getNodeAsStringValue(const DDXMLElement& node, std::string_view withKeyPath);

  /// @}

  // The rest is called by the parser itself, and by its tests, step by step. A host needs none of
  // it. It throws std::bad_alloc, what a host's functions throw, and what is said there.

  /// @name Intake and dispatch
  /// Called by the parser and its tests.
  /// @{

  /// `forVastString` with every `word=`, in any letter case, up to and including the next white
  /// space replaced by the bare word; a `word=` that no white space follows stays. For "xmlns"
  /// this takes the default namespace away, so that paths without prefixes match. Attributes glued
  /// to the word by it are lost, and a declaration at the end of a tag takes the ">" with it: that
  /// is meant. The same text when nothing matches.
  static Text replaceWithPattern(std::string_view word, const Text& forVastString);

  /// The version of the root VAST element; nil when there is none.
  static Text getVastVersion(const DDXMLDocument& document);

  /// Fills the record from one VAST 2 document. `pass` is 1 for the response itself and counts up
  /// along the chain. True: finished. False: `vastTagURI` holds the next document's URL, or
  /// `errorCode` says why not.
  bool processVASTVersion2(std::int32_t pass, const DDXMLDocument& withVASTDoc);
  /// The same for VAST 3.
  bool processVASTVersion3(std::int32_t pass, const DDXMLDocument& withVASTDoc);
  /// The same for VAST 4.
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

  /// @}

  /// @name Updaters
  /// Called by the version processors and their tests. Each reads one part of the document from the
  /// first node of the list that it is given, and writes properties. What is absent is not written,
  /// except where a comment says so.
  /// @{

  /// All Linear elements of the first InLine when the first of them can be played, otherwise nil.
  /// Notes a JavaScript VPAID unit on the way: sets jsVPaidPresent() and, behind a Wrapper,
  /// vastTagURI().
  NodeList newGetValidLinearNode(const NodeList& inlines);
  /// Sets jsVPaidPresent() when the first InteractiveCreativeFile has any text.
  void hasVPAIDMedia(const NodeList& linears);
  /// MediaFiles/MediaFile into mediaFiles().
  void updateMediaFiles(const NodeList& linears);
  /// Puts a file into mediaFiles(): in place of the one at that index, or at the end. Throws
  /// std::out_of_range for an index beyond the end.
  void addOrSetMediaFile(const DDXMLElement& element, std::int32_t withIndex);
  /// Duration into duration(); an empty one is not written.
  void updateDuration(const NodeList& linears);
  /// Into skipOffsetMillis(): "HH:MM:SS", or a percentage of the duration that the record holds at
  /// this moment, which is infinity or NaN where it is beyond a double. Nil is not written.
  void updateSkipOffset(const Text& offset);
  /// TrackingEvents/Tracking and VideoClicks/ClickTracking into trackers(). Throws
  /// std::invalid_argument for a Tracking element without an event name.
  void updateTrackers(const NodeList& linears);
  /// The id attribute into adID().
  void updateAdID(const NodeList& ads);
  /// Impression into trackers(), empty URLs included.
  void updateImpressions(const NodeList& nodes);
  /// VideoClicks/ClickThrough into clickThrough(): the last that has text.
  void updateLinearClickThrough(const NodeList& linears);
  /// VideoClicks/CustomClick into trackers(), in place of those before, unless none has a URL.
  void updateCustomClickTracker(const NodeList& linears);
  /// Icons/Icon into extraActions(), one a program.
  void updateIcons(const NodeList& linears);
  /// Puts an icon into extraActions(): in place of the last icon of that program, or at the end.
  void checkProgramExist(const Text& program, const DDXMLElement& withElement);

  /// ViewableImpression into trackers(), in place of those before.
  void updateViewableImpressions(const NodeList& nodes);
  /// AdVerifications/Verification/ViewableImpression into trackers(), in place of those before,
  /// unless none has a URL.
  void updateAdVerification(const NodeList& nodes);
  /// Verification elements into measurementProviderList(). Below 4.1 the providers are those in
  /// Extensions, from 4.1 on (or for a version that is not a number) those of the ad itself. The
  /// processors pass 4.0 at most: that is meant.
  void updateOMVerificationResources(const NodeList& nodes, float vastVerrsion);
  /// The markup of Verification/ViewableImpression of every element of the list, appended to
  /// moatViewImpressionStr(), and logged.
  void updateMoatAdVerification(const NodeList& adVerifications);
  /// The vendor's own tracking events into trackers(). Throws std::out_of_range for an empty list
  /// that is not nil.
  void updateExtraTrackingEvent(const NodeList& nodes);
  /// Tracking elements into trackers(). Throws std::invalid_argument for one without an event name.
  void updateExtraTrackingEvent_REC(const NodeList& trackingNodes);
  /// Expires into expires(); an empty one is not written.
  void updateExpires(const NodeList& nodes);
  /// Category into categoryArray(), and error 205 when one of all that the list then holds is
  /// blocked.
  void updateCategory(const NodeList& nodes);
  /// True when one of the categories is exactly one that the app blocks. Nil blocks nothing.
  static bool isCategoryBlocked(const List<Text>& categories);
  /// The attributes of UniversalAdId into univversalIDRegistry() and universalIDValue().
  void updateUniversalAdIdInfo(const NodeList& nodes);
  /// Part of the interface; reads and writes nothing.
  void updateSurvey(const NodeList& /*nodes*/) {}

  /// Hands the vendor block and the verifications of each Extensions/Extension to their readers.
  /// Throws std::out_of_range for an empty list.
  void updateExtensions(const NodeList& nodes);
  /// The ad server's own settings: docs/vendor-block.md lists them.
  void updateTamzoExtensions(const NodeList& vendorNodes);
  /// The flags of the web view, which are published for the whole SDK too. One that is absent is
  /// off.
  void updateAdditionalWebSetting(const NodeList& settings);
  /// Allows replay. `url` is what to call then, in place of what was to be called before.
  void updateReplay(const Text& url);
  /// Creatives/Creative/CompanionAds/Companion into companionAds(), as one entry.
  void updateAllCompanionNodes(const NodeList& nodes);
  /// Companion elements into companionAds(), as one entry, which may be empty.
  void updateCompanion(const NodeList& companions);

  /// @}

 private:
  struct TAMZO_HIDDEN Chain;
  TAMZO_HIDDEN void parse(const Text& vast, Chain& chain);
  TAMZO_HIDDEN void fail(const std::exception& exception);
  TAMZO_HIDDEN void followChain(Chain& chain);
  TAMZO_HIDDEN bool startHop(Chain& chain);
  TAMZO_HIDDEN bool readDocument(const Text& xml, Chain& chain);
  TAMZO_HIDDEN Text readTagURI(Chain& chain);
  TAMZO_HIDDEN void noteTag();
  TAMZO_HIDDEN bool process(std::int32_t pass, std::int32_t version, const DDXMLDocument& document);
  using WrapperReader = void (TamzoVastAd::*)(const DDXMLDocument&, const NodeList& wrappers);
  using InLineReader = bool (TamzoVastAd::*)(const NodeList& inlines);
  TAMZO_HIDDEN bool processAd(std::int32_t pass, const DDXMLDocument& document,
                              WrapperReader readWrapper, InLineReader readInLine);
  TAMZO_HIDDEN void readWrapperVersion2(const DDXMLDocument& document, const NodeList& wrappers);
  TAMZO_HIDDEN void readWrapperVersion3(const DDXMLDocument& document, const NodeList& wrappers);
  TAMZO_HIDDEN void readWrapperVersion4(const DDXMLDocument& document, const NodeList& wrappers);
  TAMZO_HIDDEN bool readInLineVersion2(const NodeList& inlines);
  TAMZO_HIDDEN bool readInLineVersion3(const NodeList& inlines);
  TAMZO_HIDDEN bool readInLineVersion4(const NodeList& inlines);
  TAMZO_HIDDEN void updateTrackersOfWrapper(const NodeList& wrappers);
  TAMZO_HIDDEN NodeList openDocument(std::int32_t pass, const DDXMLDocument& document);
  TAMZO_HIDDEN void startWrapper(std::int32_t pass, const NodeList& ads, const NodeList& wrappers);
  TAMZO_HIDDEN void resolveNextTag(const NodeList& wrappers);
  TAMZO_HIDDEN void updateSkipOffsetOfLinear(const NodeList& inlines);
  TAMZO_HIDDEN void updateLinearCreative(const NodeList& linears);
  TAMZO_HIDDEN void noteMissingLinear();
  TAMZO_HIDDEN Text fillVideoWAPView();
  TAMZO_HIDDEN void appendMoatMarkup(const NodeList& adVerifications, MoatLog& log);
  TAMZO_HIDDEN void noteJavaScriptVPAID(const NodeList& inlines);
  TAMZO_HIDDEN TrackerMap& trackerMap();

  // Of the parse under way.
  Chain* chain_ = nullptr;
};

}  // namespace tamzo
