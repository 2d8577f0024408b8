#pragma once

#include <optional>
#include <string>

#include "tamzo/net/TamzoUrlReader.h"

namespace tamzo {

/// The default reader. Compiled without libcurl it reads nothing.
std::optional<std::string> readWithCurl(const Text& url, const TamzoUrlReader::Limits& limits);

}  // namespace tamzo
