#include "tamzo/sdk/TamzoAdDuration.h"

#include "sdk/ClockTime.h"

namespace tamzo {

std::shared_ptr<TamzoAdDuration> TamzoAdDuration::initFromString(Text text) {
  const std::int64_t seconds = clockSeconds(text);
  return std::shared_ptr<TamzoAdDuration>(new TamzoAdDuration(std::move(text), seconds));
}

}  // namespace tamzo
