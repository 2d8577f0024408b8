#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"
#include "tamzo/net/Fetch.h"
#include "tamzo/net/TamzoUrlReader.h"

namespace tamzo {

class MacroValues;

/// What a host app puts in place of the SDK's defaults. What is left empty keeps its default.
///
///     tamzo::TamzoHost host;
///     host.sessionId = [] { return tamzo::Text("42"); };
///     tamzo::TamzoHost::set(std::move(host));
///
/// A host is set for the whole process, or given to one parse, so that two components of an app
/// need not share one: TamzoVastAd::initWithVast(). Each function may be called from several
/// threads at once, on the thread that parses. What it refers to must outlive every parse that uses
/// it: a parse goes on to its end with the host that it began with, whatever is set meanwhile.
///
/// A std::exception that one of them throws ends the parse with error 100, save where it says
/// otherwise; anything else that is thrown passes through to the caller of the parse.
struct TAMZO_EXPORT TamzoHost {
  /// Reads the whole body behind a URL; nothing for a failed read, which ends the ad with error
  /// 301, and so does a std::exception, std::bad_alloc included. Default: TamzoUrlReader::read()
  /// within `fetchLimits`.
  std::function<std::optional<std::string>(const Text& url)> readUrl;
  /// The same for a reader that is told more, and tells more: limits, of which the chain has taken
  /// its part already, deadline, cancellation and hop. It comes before `readUrl` and throws as that
  /// does.
  std::function<FetchResult(const FetchRequest& request)> fetch;
  /// How long a read by the default may take, and how much it may bring.
  FetchLimits fetchLimits;
  /// How the default makes its requests.
  FetchOptions fetchOptions;

  /// Takes one line of the log, without a line break, while isTamzoDebugEnabled is set. Default:
  /// the system log.
  std::function<void(std::string_view line)> writeLog;

  /// Category codes that the app blocks, separated by ","; nil, the default, blocks nothing.
  std::function<Text()> blockedAdCategories;
  /// What [TAMZO_SESSION_ID] stands for in the page of a VPAID ad. Default, and for nil: "".
  std::function<Text()> sessionId;
  /// The template of that page; nil: there is none. Default: the SDK's own.
  std::function<Text()> vpaidWrapperTemplate;

  /// The whole filling of macros in a tag URL. `from` is the TamzoVastAd that is being filled.
  /// Default: what TamzoMacroReplacementUtil does.
  std::function<Text(const Text& text, const MacroValues& from)> replaceMacros;
  /// The moment for [TIMESTAMP]. Default: the system clock.
  std::function<std::chrono::system_clock::time_point()> now;
  /// A number from 0 to `bound` - 1 for [CACHEBUSTING]. Default: a random one.
  std::function<std::uint32_t(std::uint32_t bound)> random;

  /// Sets the host of the whole process, for every parse that begins from now on. May be called
  /// from any thread. An empty host brings all defaults back. Throws std::bad_alloc, and then
  /// nothing is changed.
  static void set(TamzoHost host);

  /// The host of the whole process, as it was set last. Never null. To change one member, copy it,
  /// change the copy and set that.
  static std::shared_ptr<const TamzoHost> get() noexcept;
};

}  // namespace tamzo
