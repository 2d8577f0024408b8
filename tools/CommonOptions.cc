#include "tools/CommonOptions.h"

#include <cstdio>
#include <limits>
#include <mutex>

#include "base/Numbers.h"
#include "tamzo/sdk/TamzoHost.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "tools/Arguments.h"

namespace tamzo::command {
namespace {

void logToStandardError(std::string_view line) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fputc('\n', stderr);
}

}  // namespace

void CommonOptions::addTo(CLI::App& command) {
  command.add_option("-o", outputPath_, "Write there, not to standard output")
      ->type_name("FILE")
      ->check(notEmpty("takes the name of a file"));
  command
      .add_option("--blocked-categories", blockedCategories_,
                  "Ad categories that the app blocks, separated by \",\" and taken as they stand; "
                  "an ad with one of them ends with error 205")
      ->type_name("LIST")
      ->check(utf8Text());
  command
      .add_option("--session-id", sessionId_, "Fills [TAMZO_SESSION_ID] in the page of a VPAID ad")
      ->type_name("ID")
      ->check(utf8Text());
  command.add_flag("--debug", debug_, "Write the parser's log lines to standard error");
  command
      .add_option("--timeout", timeout_,
                  "Longest time that one fetch may take, in seconds (default 15)")
      ->type_name("SECONDS")
      ->check(seconds());
  command
      .add_option("--max-body", maxBody_,
                  "Largest body that one fetch may bring, in bytes (default 16777216)")
      ->type_name("BYTES")
      ->transform(wholeNumber(1, std::numeric_limits<std::size_t>::max(),
                              "a whole number of bytes above 0"));
}

void CommonOptions::apply() const {
  TamzoHost host = *TamzoHost::get();
  if (timeout_) {
    host.fetchLimits.totalSeconds = doubleValue(*timeout_);
    host.fetchLimits.connectSeconds = host.fetchLimits.totalSeconds;
  }
  if (maxBody_) {
    host.fetchLimits.maxBodyBytes = *maxBody_;
  }
  if (blockedCategories_) {
    host.blockedAdCategories = [text = Text(*blockedCategories_)] { return text; };
  }
  if (sessionId_) {
    host.sessionId = [text = Text(*sessionId_)] { return text; };
  }
  if (debug_) {
    isTamzoDebugEnabled = true;
    host.writeLog = logToStandardError;
  }
  TamzoHost::set(std::move(host));
}

}  // namespace tamzo::command
