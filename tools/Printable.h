#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tamzo::command {

/// The text with every control character, line breaks among them, written as "\u001b". For what is
/// read by programs and people alike.
std::string printable(std::string_view text);

// What a terminal shows as it stands is what a person sees: no control character, none that is
// invisible, joins or turns the text around or ends a line, no space but " ", nothing that is
// unassigned or private, no broken UTF-8. All that is written as "\u202e", or "\xff" for a byte.

/// For one line on a terminal.
std::string shownOnTerminal(std::string_view text);

/// The same for a text of many lines, which are kept. Tabs become blanks. Each line but the first
/// is preceded by `indent`.
std::string linesShownOnTerminal(std::string_view text, std::string_view indent = "");

/// The same for JSON, which stays JSON of the same value.
std::string jsonShownOnTerminal(std::string_view json);

/// Columns that a text takes which a terminal shows as it stands.
std::size_t columnsOf(std::string_view text);

/// That text, with its middle replaced by "..." where it takes more columns than that.
std::string cutInTheMiddle(std::string_view text, std::size_t columns);

}  // namespace tamzo::command
