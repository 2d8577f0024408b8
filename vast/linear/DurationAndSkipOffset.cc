#include "tamzo/vast/TamzoVastAd.h"

#include <string_view>

#include "base/Numbers.h"
#include "sdk/ClockTime.h"
#include "tamzo/sdk/TamzoLogger.h"

namespace tamzo {

void TamzoVastAd::updateDuration(const NodeList& linears) {
  const Text value = getSingleValueFromNode(linears, "Duration");
  TAMZO_LOG("Vast Ad Duration %@", value);
  TAMZO_LOG("Duration Object Class Type is %@", Text::literal("Text"));
  if (!value.hasCharacters()) {
    return;
  }
  setDuration(TamzoAdDuration::initFromString(value));
  TAMZO_LOG("Duration: %ld", duration()->durationInSeconds());
}

void TamzoVastAd::updateSkipOffset(const Text& offset) {
  if (offset.isNil()) {
    return;
  }
  std::string_view text = offset;
  if (text.ends_with('%')) {
    text.remove_suffix(1);
    const double percentage = doubleValue(text);
    const auto seconds =
        static_cast<double>(duration() == nullptr ? 0 : duration()->durationInSeconds());
    setSkipOffsetMillis(((seconds * percentage) / 100.0) * 1000.0);
    return;
  }
  setSkipOffsetMillis(lenientClockMillis(text));
}

}  // namespace tamzo
