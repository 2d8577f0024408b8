#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tamzo/base/Text.h"
#include "tamzo/vast/ParseOptions.h"

namespace tamzo::explain {

enum class Severity : std::uint8_t { error, warning, note };

enum class Verdict : std::uint8_t { playable, failed, nothingToPlay };

/// A value that a finding names: a key, and the value as JSON text.
struct Detail {
  std::string_view key;  ///< a literal
  std::string json;
};

/// A place in the document of a hop, as it was received.
struct Place {
  std::size_t line = 0;    ///< from 1; lines end at LF
  std::size_t column = 0;  ///< from 1, in characters; a byte order mark is none
  std::string excerpt;     ///< the line, cut to 160 characters around the column
  /// Characters of `excerpt` before the spot.
  std::size_t spot = 0;
};

/// One thing to know about a response.
struct Finding {
  std::string_view id;
  Severity severity = Severity::note;
  std::optional<std::int32_t> hop;
  std::optional<Place> place;
  std::string message;
  std::string advice;  ///< "": none
  std::vector<Detail> details;
};

enum class AdKind : std::uint8_t { none, wrapper, inLine };

/// A name and what a tag's macro of that name was filled with.
using FilledMacro = std::pair<std::string, std::string>;

/// One document that was read or asked for.
struct HopReport {
  std::int32_t number = 1;
  HopSource source = HopSource::input;
  Text tag;
  Text url;
  std::vector<FilledMacro> macros;
  std::vector<std::string> unfilled;
  std::optional<FetchResult> fetch;  ///< without its body
  Text document;                     ///< as received; nil where none came
  Text version;
  AdKind kind = AdKind::none;
  Text adSystem;
  Text adTitle;
  Text adId;
  std::size_t ads = 0;
  std::size_t creatives = 0;
  std::size_t linears = 0;
  std::size_t impressions = 0;
  std::size_t trackers = 0;
  std::size_t companions = 0;
  std::size_t icons = 0;
  std::size_t verifications = 0;
  std::size_t errorUrls = 0;
};

/// From which hop each tracker under one event came.
struct TrackerHops {
  Text event;
  std::vector<std::int32_t> hops;
};

/// A MediaFile or InteractiveCreativeFile of the last document.
struct MediaFileReport {
  std::int32_t hop = 1;
  std::optional<std::size_t> line;
  Text type;
  Text delivery;
  Text url;
  std::optional<std::int32_t> width;
  std::optional<std::int32_t> height;
  std::string why;  ///< "": it was taken
};

/// Why a response did or did not become an ad.
struct Explanation {
  Verdict verdict = Verdict::playable;
  std::int32_t errorCode = 0;
  std::string sentence;
  std::vector<Finding> findings;
  std::vector<HopReport> hops;
  std::vector<TrackerHops> trackerHops;
  std::vector<MediaFileReport> mediaFiles;
};

std::string_view nameOf(Severity severity) noexcept;
std::string_view nameOf(Verdict verdict) noexcept;
std::string_view nameOf(AdKind kind) noexcept;
std::string_view nameOf(HopSource source) noexcept;

/// The finding that says why there is no ad; null when there is one.
const Finding* errorOf(const Explanation& explanation) noexcept;

/// A detail of a finding, as JSON text; "" where it has none of that key.
std::string_view detailOf(const Finding& finding, std::string_view key) noexcept;

}  // namespace tamzo::explain
