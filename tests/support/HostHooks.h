#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "tamzo/sdk/TamzoHost.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo::testing {

/// Changes the host of the process as `change` does; the rest of it stays.
inline void changeHost(const std::function<void(TamzoHost& host)>& change) {
  TamzoHost host = *TamzoHost::get();
  change(host);
  TamzoHost::set(std::move(host));
}

// One member each; an empty function brings the default back.

inline void readUrlsWith(decltype(TamzoHost::readUrl) reader) {
  changeHost([&](TamzoHost& host) { host.readUrl = std::move(reader); });
}

/// As the parser reads a URL.
inline std::optional<std::string> readUrl(const Text& url) {
  const auto host = TamzoHost::get();
  return host->readUrl ? host->readUrl(url) : TamzoUrlReader::read(url, host->fetchLimits);
}

inline void limitFetches(const TamzoUrlReader::Limits& limits) {
  changeHost([&](TamzoHost& host) { host.fetchLimits = limits; });
}

inline void writeLogTo(decltype(TamzoHost::writeLog) sink) {
  changeHost([&](TamzoHost& host) { host.writeLog = std::move(sink); });
}

inline void useTemplateFrom(decltype(TamzoHost::vpaidWrapperTemplate) source) {
  changeHost([&](TamzoHost& host) { host.vpaidWrapperTemplate = std::move(source); });
}

/// What stands in for the app's state.
struct HostState {
  std::function<Text()> blockedAdCategories;
  std::function<Text()> sessionId;
};

inline void useState(HostState state) {
  changeHost([&](TamzoHost& host) {
    host.blockedAdCategories = std::move(state.blockedAdCategories);
    host.sessionId = std::move(state.sessionId);
  });
}

/// How macros are filled.
struct MacroHooks {
  std::function<Text(const Text& text, const TamzoVastAd& ad)> replace;
  decltype(TamzoHost::now) now;
  decltype(TamzoHost::random) random;
};

inline void fillMacrosWith(MacroHooks hooks) {
  changeHost([&](TamzoHost& host) {
    host.replaceMacros = {};
    if (hooks.replace) {
      host.replaceMacros = [replace = std::move(hooks.replace)](const Text& text,
                                                                const MacroValues& from) {
        return replace(text, static_cast<const TamzoVastAd&>(from));
      };
    }
    host.now = std::move(hooks.now);
    host.random = std::move(hooks.random);
  });
}

}  // namespace tamzo::testing
