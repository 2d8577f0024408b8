#pragma once

#include <string>

namespace tamzo::command {

/// The bytes of a file, or of standard input for "" and "-", without a byte order mark. Throws
/// CommandError, which names the input and says why, when it cannot be read or is not UTF-8.
std::string readInput(const std::string& path);

/// Where standard input is a terminal, tells the person at it what is waited for, and which
/// command's help tells more.
void sayThatInputIsAwaited(const std::string& what, const std::string& command);

/// The text without a byte order mark at its start.
std::string withoutByteOrderMark(std::string text);

}  // namespace tamzo::command
