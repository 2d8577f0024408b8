// The linear creative: which Linear can be played, and everything read from it.

#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "sdk/KeyIndex.h"
#include "sdk/TamzoLogger.h"
#include "sdk/TextConversions.h"
#include "vast/TamzoVastAd.h"
#include "vast/TrackerEvents.h"

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

// Milliseconds of "HH:MM:SS", in 32-bit arithmetic that wraps; a fraction of a second is dropped.
// 0 for fewer than three components; more than three are ignored.
double clockMillis(std::string_view clock) {
  std::array<std::int64_t, 3> parts{};
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const std::size_t colon = clock.find(':');
    if (colon == std::string_view::npos && i + 1 < parts.size()) {
      return 0.0;
    }
    parts[i] = integerValue(clock.substr(0, colon));
    clock.remove_prefix(colon == std::string_view::npos ? clock.size() : colon + 1);
  }
  const std::int64_t total = parts[0] * 3600 + parts[1] * 60 + parts[2];
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(total) * 1000U);
}

// The icons of an extra-actions list by program, so that a document of many icons is read in time
// linear in their number. JSON values in the list have no program and are passed over.
class IconPrograms {
 public:
  explicit IconPrograms(List<TamzoExtraActions::Entry> actions) : actions_(std::move(actions)) {
    for (std::size_t i = 0; i < actions_->size(); ++i) {
      if (const auto* icon = std::get_if<DDXMLElement>(&(*actions_)[i])) {
        // Of several with one program the last is remembered.
        remember(icon->attributeValue("program"), i);
      }
    }
  }

  void put(const Text& program, const DDXMLElement& icon) {
    const auto position = program.isNil() ? std::nullopt : positions_.find(program);
    if (position) {
      (*actions_)[*position] = icon;
    } else {
      actions_->emplace_back(icon);
      remember(program, actions_->size() - 1);
    }
  }

 private:
  void remember(const Text& program, std::size_t position) {
    if (!program.isNil()) {
      programs_.push_back(program);
      positions_.set(program, position);
    }
  }

  List<TamzoExtraActions::Entry> actions_;
  std::vector<Text> programs_;  // keeps the characters of the keys
  KeyIndex positions_;
};

}  // namespace

// ---- Which Linear --------------------------------------------------------------------------

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

// ---- Media files ---------------------------------------------------------------------------

void TamzoVastAd::updateMediaFiles(const NodeList& linears) {
  std::int32_t index = 0;
  for (const DDXMLElement& file : linears.nodesUnderFirst("MediaFiles/MediaFile")) {
    addOrSetMediaFile(file, index++);
  }
}

void TamzoVastAd::addOrSetMediaFile(const DDXMLElement& element, std::int32_t withIndex) {
  if (!element || mediaFiles() == nullptr) {
    return;
  }
  auto file = TamzoMediaFile::initWithNode(element);
  auto& files = *mediaFiles();
  const auto index = static_cast<std::size_t>(withIndex);
  if (withIndex < 0 || index > files.size()) {
    throw std::out_of_range("media files: index " + std::to_string(withIndex) + " of " +
                            std::to_string(files.size()));
  }
  if (index == files.size()) {
    files.push_back(std::move(file));
  } else {
    files[index] = std::move(file);
  }
}

// ---- Duration and skip offset --------------------------------------------------------------

void TamzoVastAd::updateDuration(const NodeList& linears) {
  const Text value = getSingleValueFromNode(linears, "Duration");
  TAMZO_LOG("Vast Ad Duration %@", value);
  TAMZO_LOG("Duration Object Class Type is %@", Text::literal("Text"));
  if (!value.hasCharacters()) {
    return;
  }
  setDuration(TamzoAdDuration::initFromString(value));
  TAMZO_LOG("Duration: %ld", duration()->durationInSeconds());
}

void TamzoVastAd::updateSkipOffset(const Text& offset) {
  if (offset.isNil()) {
    return;
  }
  std::string_view text = offset;
  if (text.ends_with('%')) {
    text.remove_suffix(1);
    const double percentage = doubleValue(text);
    const auto seconds =
        static_cast<double>(duration() == nullptr ? 0 : duration()->durationInSeconds());
    setSkipOffsetMillis(((seconds * percentage) / 100.0) * 1000.0);
    return;
  }
  setSkipOffsetMillis(clockMillis(text));
}

// ---- Tracking, impressions and clicks ------------------------------------------------------

void TamzoVastAd::updateTrackers(const NodeList& linears) {
  if (linears.empty()) {
    return;
  }
  // `trackersOffset` is of no consequence here: an offset that it lists is tracked all the same.
  for (const DDXMLElement& tracking : linears.nodesUnderFirst("TrackingEvents/Tracking")) {
    // The list is made before the URL is looked at, so an event without a URL has an empty one.
    const TrackerList events = trackerMap().listFor(tracking.attributeValue("event"));
    appendTracker(*events, tracking, trackerOffset(tracking.attributeValue("offset")));
  }
  const TrackerList clicks = trackerMap().listFor(Text::literal("ClickTracking"));
  for (const DDXMLElement& click : linears.nodesUnderFirst("VideoClicks/ClickTracking")) {
    appendTracker(*clicks, click);
  }
}

void TamzoVastAd::updateAdID(const NodeList& ads) {
  const Text id = ads.empty() ? Text() : ads.at(0).attributeValue("id");
  if (id.isNil()) {
    TAMZO_LOG("no valid ad-id!");
    return;
  }
  setAdID(id);
}

void TamzoVastAd::updateImpressions(const NodeList& nodes) {
  const TrackerList impressions = trackerMap().listFor(Text::literal("Impression"));
  const NodeList elements = nodes.nodesUnderFirst("Impression");
  if (elements.empty()) {
    return;
  }
  for (const DDXMLElement& element : elements) {
    // Unlike everywhere else an empty URL is kept.
    impressions->push_back(makeTracker(element.stringValue()));
  }
  TAMZO_LOG("impressions added!");
}

void TamzoVastAd::updateLinearClickThrough(const NodeList& linears) {
  if (linears.empty()) {
    return;
  }
  for (const DDXMLElement& click : linears.nodesUnderFirst("VideoClicks/ClickThrough")) {
    const Text url = click.stringValue();
    if (url.hasCharacters()) {
      setClickThrough(url);
    }
  }
  TAMZO_LOG("Click Through updated!");
}

void TamzoVastAd::updateCustomClickTracker(const NodeList& linears) {
  const NodeList clicks = linears.nodesUnderFirst("VideoClicks/CustomClick");
  if (clicks.empty()) {
    return;
  }
  TrackerList trackersOfClicks = trackersOf(clicks);
  if (!trackersOfClicks->empty()) {
    trackerMap().set(Text::literal("CustomClickTracker"), std::move(trackersOfClicks));
  }
}

// ---- Icons ---------------------------------------------------------------------------------

void TamzoVastAd::updateIcons(const NodeList& linears) {
  const NodeList icons = linears.nodesUnderFirst("Icons/Icon");
  if (icons.empty()) {
    return;
  }
  std::optional<IconPrograms> programs;
  if (extraActions().isList()) {
    programs.emplace(extraActions().list());
  }
  for (const DDXMLElement& icon : icons) {
    const Text program = icon.attributeValue("program");
    // Where the ad server sent no list, there is nothing that an icon could join.
    if (!program.hasCharacters() || !programs) {
      continue;
    }
    const bool isFirst = extraActions().list()->empty();
    programs->put(program, icon);
    if (!isFirst) {
      TAMZO_LOG("scsd");
    }
  }
  TAMZO_LOG("Added Extra Action");
}

void TamzoVastAd::checkProgramExist(const Text& program, const DDXMLElement& withElement) {
  if (extraActions().isList()) {
    IconPrograms(extraActions().list()).put(program, withElement);
  }
  TAMZO_LOG("scsd");
}

}  // namespace tamzo
