#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"

namespace tamzo {

class TamzoVastAd;

/// Fills the macros of IAB VAST 4.3 in a URL. Every function may be called from any thread.
class TAMZO_EXPORT TamzoMacroReplacementUtil {
 public:
  /// What a host or a test puts in place; an empty function leaves the default in force.
  struct Hooks {
    /// The whole replacement.
    std::function<Text(const Text& text, const TamzoVastAd& ad)> replace;
    /// The moment for [TIMESTAMP]; default: the system clock.
    std::function<std::chrono::system_clock::time_point()> now;
    /// A number from 0 to `bound` - 1 for [CACHEBUSTING]; default: a random one.
    std::function<std::uint32_t(std::uint32_t bound)> random;
  };
  static void setHooks(Hooks hooks);

  /// The text with each known macro, "[NAME]" in capitals, replaced by its value from the record
  /// or the clock, percent-encoded as encodeURIComponent does; "-1" stands for a value that is not
  /// known. One pass from left to right: what is put in is not looked at again. Brackets around
  /// anything else stay as they are, and so does a text without macros, nil and "" included. Where
  /// the values of one text would come to more than 1 MiB, the macros after that stay too.
  static Text replaceVASTMacros(const Text& text, const TamzoVastAd& fromVast);
};

}  // namespace tamzo
