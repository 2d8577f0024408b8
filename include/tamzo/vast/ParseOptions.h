#pragma once

#include <cstdint>
#include <limits>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"
#include "tamzo/net/Cancellation.h"
#include "tamzo/net/Fetch.h"
#include "tamzo/sdk/TamzoHost.h"

namespace tamzo {

class DDXMLDocument;
class TamzoVastAd;

/// Where a document of a chain came from.
enum class HopSource : std::uint8_t {
  input,  ///< the text that the parse was given
  url,    ///< fetched
  tag,    ///< a Wrapper's tag that does not begin with "http", which is parsed as it stands
};

/// One document of a chain, read or asked for. Valid during ParseObserver::onHop() only; its texts
/// may be kept.
struct Hop {
  std::int32_t number;          ///< 1 for the first
  HopSource source;             ///< where it came from
  const Text& tag;              ///< as in the Wrapper before, macros unfilled; nil for hop 1
  const Text& url;              ///< the tag filled and trimmed; nil where nothing was fetched
  const FetchResult* fetch;     ///< null where nothing was fetched. Its body is in `document`
  const Text& document;         ///< as received, before any clean-up; nil where none came
  const DDXMLDocument* parsed;  ///< as the parser read it; null where that is no XML
  std::int32_t errorCode;       ///< of the record after this hop
  const TamzoVastAd& record;    ///< after this hop
  const Text& exception;        ///< what was thrown and ended the parse here; nil where nothing was
};

/// Told of each hop of a parse.
class TAMZO_EXPORT ParseObserver {
 public:
  virtual ~ParseObserver() = default;
  /// Called once for each hop, in order, after it was processed or has failed, on the thread that
  /// parses. What it throws is treated as what a function of a TamzoHost throws.
  virtual void onHop(const Hop& hop) = 0;
};

/// What one parse is given beside its response. A plain value; what it points to must outlive the
/// parse.
struct ParseOptions {
  const TamzoHost* host = nullptr;  ///< null: that of the process
  /// Longest time that all fetches of the chain may take together, from the start of the parse, or
  /// less where the host says so (FetchLimits::chainSeconds); NaN and less than 0 count as 0. The
  /// fetch that meets the end fails, and so do those after it: error 301. What was read before
  /// stays in the record.
  double totalSeconds = std::numeric_limits<double>::infinity();
  /// Cancelled, the fetch under way fails, and those after it: error 301.
  Cancellation cancellation = Cancellation::never();
  ParseObserver* observer = nullptr;  ///< null: nobody is told
};

}  // namespace tamzo
