#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"
#include "tamzo/net/Fetch.h"

namespace tamzo {

/// Fetches what is behind a URL, on the calling thread, by libcurl: http and https only, redirects
/// followed within those, limits on time and size, gzip understood. Every function may be called
/// from any thread. A host puts a reader of its own in place by TamzoHost::fetch or
/// TamzoHost::readUrl.
class TAMZO_EXPORT TamzoUrlReader {
 public:
  /// What one read may take.
  using Limits = FetchLimits;

  /// Fetches, and says what came of it. Throws std::bad_alloc only.
  static FetchResult fetch(const FetchRequest& request);

  /// The body that fetch() brings, "" included, or nothing when it could not be read whole: any
  /// failure of the network, a limit passed, HTTP status 400 or above, or a build without libcurl.
  /// Throws std::bad_alloc only.
  static std::optional<std::string> read(const Text& url, const Limits& limits);

  /// Closes the connections that no fetch is using, which are kept for the next one: for an app
  /// that goes to the background. They are closed by themselves when a fetch finds them idle for a
  /// minute.
  static void closeIdleConnections() noexcept;

  /// A URL made from a text: what a URL may not hold is percent-encoded as UTF-8, what is encoded
  /// already stays. Nil for an empty text, and for one beyond 1 MiB, which no server would take.
  static Text urlFromText(std::string_view text);
};

}  // namespace tamzo
