#include "net/CurlReader.h"

namespace tamzo {

// Built without libcurl: a host brings a reader of its own, and until then every read fails.
std::optional<std::string> readWithCurl(const Text&, const TamzoUrlReader::Limits&) {
  return std::nullopt;
}

}  // namespace tamzo
