#pragma once

#include <cstddef>
#include <string>
#include <string_view>

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

/// "1.5 s", "40 ms".
std::string inSeconds(double milliseconds);

/// True when `text` begins with `beginning`, whatever the case of ASCII letters.
bool beginsLike(std::string_view text, std::string_view beginning) noexcept;

}  // namespace tamzo::explain
