#include "tamzo/sdk/TamzoLogger.h"

#include <syslog.h>

#include <cstdlib>
#include <memory>
#include <utility>

#ifdef TAMZO_HAS_BACKTRACE
#include <execinfo.h>
#endif

#include "sdk/HostInUse.h"
#include "tamzo/base/Version.h"

namespace tamzo {

std::atomic<bool> isTamzoDebugEnabled{false};

namespace {

void write(std::string_view line) {
  const HostInUse host;
  if (host->writeLog) {
    host->writeLog(line);
  } else {
    syslog(LOG_DEBUG, "%.*s", static_cast<int>(line.size()), line.data());
  }
}

void append(std::string& out, const TamzoLogger::Argument& argument) {
  if (const auto* number = std::get_if<std::int64_t>(&argument)) {
    out += std::to_string(*number);
  } else {
    const Text& text = std::get<Text>(argument);
    out += text.isNil() ? std::string_view("(null)") : text.view();
  }
}

}  // namespace

void TamzoLogger::printLog(const Text& line) {
  if (isTamzoDebugEnabled.load(std::memory_order_relaxed)) {
    write(line);
  }
}

void TamzoLogger::debugLine(std::string_view message, std::initializer_list<Argument> arguments) {
  std::string line =
      format("[TAMZO-LOG][v%@ p%@] ", {Text::literal(TAMZO_VERSION), Text::literal("0")});
  line += format(message, arguments);
  write(line);
}

std::string TamzoLogger::format(std::string_view format,
                                std::initializer_list<Argument> arguments) {
  std::string out;
  const auto* argument = arguments.begin();
  while (!format.empty()) {
    const std::size_t length = format.starts_with("%@") ? 2 : (format.starts_with("%ld") ? 3 : 0);
    if (length > 0 && argument != arguments.end()) {
      append(out, *argument++);
      format.remove_prefix(length);
    } else {
      out += format.front();
      format.remove_prefix(1);
    }
  }
  return out;
}

std::string TamzoLogger::callStackSymbols() {
  std::string stack;
#ifdef TAMZO_HAS_BACKTRACE
  void* frames[64];
  const int count = backtrace(frames, 64);
  struct Free {
    void operator()(char** symbols) const noexcept { std::free(symbols); }
  };
  const std::unique_ptr<char*[], Free> symbols(backtrace_symbols(frames, count));
  for (int i = 0; symbols != nullptr && i < count; ++i) {
    stack += stack.empty() ? "" : "\n";
    stack += symbols[static_cast<std::size_t>(i)];
  }
#endif
  return stack;
}

}  // namespace tamzo
