#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"

namespace tamzo {

/// The SDK's debug switch. Off, no line is written and no argument of a line is computed.
/// A host may turn it at any moment, from any thread.
TAMZO_EXPORT extern std::atomic<bool> isTamzoDebugEnabled;

/// The SDK's log, which goes to the system's or to TamzoHost::writeLog. Every function may be
/// called from any thread, and throws what the host's own function throws.
class TAMZO_EXPORT TamzoLogger {
 public:
  /// What fills a "%@" or a "%ld".
  using Argument = std::variant<Text, std::int64_t>;

  /// Writes one line as it is, when debug logging is on.
  static void printLog(const Text& line);

  /// Writes "[TAMZO-LOG][v8.0.0 p0] " and the message, whose "%@" and "%ld" are filled in order; a
  /// nil text reads "(null)". Called through TAMZO_LOG, which asks the switch first.
  static void debugLine(std::string_view message, std::initializer_list<Argument> arguments = {});

  /// `format` with its "%@" and "%ld" filled in order.
  static std::string format(std::string_view format, std::initializer_list<Argument> arguments);

  /// The calling thread's stack, a symbol a line; empty on a platform that cannot tell.
  static std::string callStackSymbols();
};

}  // namespace tamzo

/// Logs a debug line. A macro, so that arguments are not computed when nobody listens.
#define TAMZO_LOG(message, ...)                                             \
  do {                                                                      \
    if (::tamzo::isTamzoDebugEnabled.load(std::memory_order_relaxed)) {     \
      ::tamzo::TamzoLogger::debugLine(message __VA_OPT__(, {__VA_ARGS__})); \
    }                                                                       \
  } while (false)
