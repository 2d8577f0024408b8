#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "explain/Explanation.h"

namespace tamzo::explain {

// Pieces that sentences are made of.

/// A value in quotes, cut where it is long.
std::string quoted(std::string_view value);

/// "1 file", "2 files".
std::string counted(std::size_t count, std::string_view one, std::string_view many);

/// The host of a URL, without user, password and port; "" where there is none.
std::string_view hostOf(std::string_view url) noexcept;

/// A host for a sentence: its name, or a few words where there is none.
std::string hostInWords(std::string_view url);

/// Where the document of a hop came from: the host that was asked, or "input" or "tag". A view into
/// the hop.
std::string_view originOf(const HopReport& hop) noexcept;

/// "Wrapper", "InLine" or "no ad".
std::string_view inWords(AdKind kind) noexcept;

/// "OK", "FAILED 101", or that there is no ad although nothing failed.
std::string verdictInWords(const Explanation& explanation);

/// How a fetch ended: "200", "404 status", "timeout".
std::string statusInWords(const FetchResult& fetch);

/// "1.5 s", "40 ms".
std::string inSeconds(double milliseconds);

/// True when `text` begins with `beginning`, whatever the case of ASCII letters.
bool beginsLike(std::string_view text, std::string_view beginning) noexcept;

}  // namespace tamzo::explain
