#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"

namespace tamzo {

/// Reads the whole body of a URL, on the calling thread, by libcurl: http and https only, redirects
/// followed within those, limits on time and size, gzip understood. Every function may be called
/// from any thread. A host puts a reader of its own in place by TamzoHost::readUrl.
class TAMZO_EXPORT TamzoUrlReader {
 public:
  /// What one read may take. Seconds of 0, of less or of NaN leave no time, and nothing is read;
  /// more than fit into 31 bits of milliseconds, and infinity, count as 24 days.
  struct Limits {
    double connectSeconds = 5.0;                        ///< until there is a connection
    double totalSeconds = 15.0;                         ///< the whole read, redirects included
    std::size_t maxBodyBytes = std::size_t{16} << 20U;  ///< after decompression
  };

  /// The body, or nothing when it could not be read whole: any failure of the network, a limit
  /// passed, HTTP status 400 or above, or a build without libcurl. Throws std::bad_alloc only.
  static std::optional<std::string> read(const Text& url, const Limits& limits);

  /// A URL made from a text: what a URL may not hold is percent-encoded as UTF-8, what is encoded
  /// already stays. Nil for an empty text, and for one beyond 1 MiB, which no server would take.
  static Text urlFromText(std::string_view text);
};

}  // namespace tamzo
