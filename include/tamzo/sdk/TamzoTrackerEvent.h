#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "tamzo/base/Export.h"
#include "tamzo/base/KeyIndex.h"
#include "tamzo/base/List.h"
#include "tamzo/base/Text.h"
#include "tamzo/xml/NodeList.h"

namespace tamzo {

/// One tracking URL.
///
/// A plain value without locks: one thread may change it while no other reads it.
class TAMZO_EXPORT TamzoTrackerEvent {
 public:
  /// Without URL and offset.
  TamzoTrackerEvent() noexcept = default;
  /// With both.
  TamzoTrackerEvent(Text url, Text offset) noexcept
      : url_(std::move(url)), offset_(std::move(offset)) {}

  /// Without URL and offset. Never null.
  static std::shared_ptr<TamzoTrackerEvent> init() { return std::make_shared<TamzoTrackerEvent>(); }

  /// The text of the element, untrimmed and with its macros unfilled. Nil until set.
  const Text& url() const noexcept TAMZO_LIFETIMEBOUND { return url_; }
  /// Sets url().
  void setUrl(Text url) noexcept { url_ = std::move(url); }

  /// When to fire, in whole seconds from the start, as decimal text; "" for an event that has no
  /// time. Nil until set.
  const Text& offset() const noexcept TAMZO_LIFETIMEBOUND { return offset_; }
  /// Sets offset().
  void setOffset(Text offset) noexcept { offset_ = std::move(offset); }

 private:
  Text url_;
  Text offset_;
};

/// The events of one name, in the order met. Nil where no document names the event.
using TrackerList = List<std::shared_ptr<TamzoTrackerEvent>>;

/// Tracking URLs by event name, in the order in which the names were first met. A copy shares the
/// lists; a map that was moved away is empty. When memory runs out, a map is what it was.
///
/// A plain value without locks: one thread may change it while no other reads it.
class TAMZO_EXPORT TrackerMap {
 public:
  /// A name and what is fired under it. The list may be empty, and is nil only where a host set
  /// nil.
  struct Entry {
    Text name;           ///< as the document writes it
    TrackerList events;  ///< in document order, over the whole chain
  };

  /// Without names.
  TrackerMap() noexcept = default;
  /// Of the same names, with the very lists.
  TrackerMap(const TrackerMap&) = default;
  /// Leaves `other` empty.
  TrackerMap(TrackerMap&& other) noexcept { swap(other); }
  /// As the copy or the move that made `other`.
  TrackerMap& operator=(TrackerMap other) noexcept {
    swap(other);
    return *this;
  }

  /// The list under `name`, or nil.
  TrackerList find(std::string_view name) const;

  /// The list under `name`, made and entered empty when there is none. Throws
  /// std::invalid_argument for a nil name.
  const TrackerList& listFor(const Text& name) TAMZO_LIFETIMEBOUND;

  /// Puts `events` under `name` in place of what stands there. Throws as listFor does.
  void set(const Text& name, TrackerList events);

  /// How many names there are.
  std::size_t size() const noexcept { return entries_.size(); }
  /// The names and their lists, in the order in which the names were first met.
  std::vector<Entry>::const_iterator begin() const noexcept TAMZO_LIFETIMEBOUND {
    return entries_.begin();
  }
  /// The end of begin().
  std::vector<Entry>::const_iterator end() const noexcept TAMZO_LIFETIMEBOUND {
    return entries_.end();
  }

 private:
  void swap(TrackerMap& other) noexcept {
    entries_.swap(other.entries_);
    std::swap(positions_, other.positions_);
  }

  std::vector<Entry> entries_;
  KeyIndex positions_;
};

// ---- How trackers are read from a document ---------------------------------------------------

/// A tracking element's `offset` attribute as the text of TamzoTrackerEvent::offset(): "" for an
/// absent or empty one, otherwise whole seconds, 0 for what is no clock time.
TAMZO_EXPORT Text trackerOffset(const Text& attribute);

/// An event of that URL, which has no time unless `offset` gives one.
TAMZO_EXPORT std::shared_ptr<TamzoTrackerEvent> makeTracker(Text url,
                                                            Text offset = Text::literal(""));

/// Appends an event for the element's text as it stands, unless that is "" or `events` is nil.
TAMZO_EXPORT void appendTracker(const TrackerList& events, const DDXMLElement& element,
                                Text offset = Text::literal(""));

/// Appends an event for each element whose text is not "", unless `events` is nil.
TAMZO_EXPORT void appendTrackers(const TrackerList& events, const NodeList& elements);

/// The TrackingEvents/Tracking elements under `parent` as the SDK's components read them, which
/// differs from the record's own `trackers`: URLs are trimmed, and elements without an event name
/// are passed over, since a component has no error code to fail with.
TAMZO_EXPORT TrackerMap trackersUnder(const DDXMLElement& parent);

}  // namespace tamzo
