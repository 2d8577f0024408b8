#pragma once

#include "tamzo/net/Fetch.h"
#include "tamzo/sdk/TamzoHost.h"

namespace tamzo {

/// Fetches by the host's own reader, or by the default where it has none. Nobody is asked for a nil
/// URL, past the deadline, or once it is cancelled; what a host's reader brings later than that has
/// failed as well. A std::bad_alloc of a host's reader is a failed fetch; what else it throws
/// passes through.
FetchResult fetchByHost(const TamzoHost& host, const FetchRequest& request);

}  // namespace tamzo
