#pragma once

#include <string>

namespace tamzo::command {

/// The bytes of a file, or of standard input for "" and "-", without a byte order mark. Throws
/// CommandError, which names the input and says why, when it cannot be read or is not UTF-8.
std::string readInput(const std::string& path);

/// The text without a byte order mark at its start.
std::string withoutByteOrderMark(std::string text);

}  // namespace tamzo::command
