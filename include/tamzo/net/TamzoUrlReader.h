#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"

namespace tamzo {

/// Reads the whole body of a URL, on the calling thread. The default is libcurl: http and https
/// only, redirects followed within those, limits on time and size, gzip understood. Every function
/// may be called from any thread.
class TAMZO_EXPORT TamzoUrlReader {
 public:
  struct Limits {
    double connectSeconds = 5.0;
    double totalSeconds = 15.0;                         ///< the whole read, redirects included
    std::size_t maxBodyBytes = std::size_t{16} << 20U;  ///< after decompression
  };

  /// Takes a URL and returns the bytes of its body, or nothing when the read failed. May throw a
  /// std::exception, which counts as a failed read.
  using Reader = std::function<std::optional<std::string>(const Text& url)>;

  /// Puts a host's own reader in place of libcurl; an empty function brings the default back.
  static void setReader(Reader reader);

  /// Limits of every read by the default reader from now on.
  static void setLimits(const Limits& limits);

  /// The body, or nothing when it could not be read whole: any failure of the network, a limit
  /// passed, HTTP status 400 or above, or a build without libcurl and no reader of the host's.
  static std::optional<std::string> read(const Text& url);

  /// A URL made from a text: what a URL may not hold is percent-encoded as UTF-8, what is encoded
  /// already stays. Nil for an empty text, and for one beyond 1 MiB, which no server would take.
  static Text urlFromText(std::string_view text);
};

}  // namespace tamzo
