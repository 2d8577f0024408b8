#pragma once

#include <cstddef>

namespace tamzo::command {

enum class ColourChoice { automatic, always, never };

bool isTerminal(int descriptor) noexcept;

/// A terminal on which what is written can be taken away again, as every one but TERM=dumb can.
bool isLivelyTerminal(int descriptor) noexcept;

/// Columns of a terminal: its own count, or COLUMNS where it has none, or 80.
std::size_t terminalColumns(int descriptor) noexcept;

/// Whether what goes to the descriptor has colours. `automatic` heeds NO_COLOR, TERM and
/// CLICOLOR_FORCE.
bool showsColours(ColourChoice choice, int descriptor) noexcept;

}  // namespace tamzo::command
