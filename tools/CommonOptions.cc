#include "tools/CommonOptions.h"

#include <limits>

#include "base/Numbers.h"
#include "tamzo/sdk/TamzoHost.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "tools/Arguments.h"
#include "tools/StandardError.h"

namespace tamzo::command {
namespace {

constexpr const char* kOutput = "Output";
constexpr const char* kAppState = "The app's state";
constexpr const char* kFetching = "Fetching";

ColourChoice colourChoice(const std::string& name) {
  return name == "always"  ? ColourChoice::always
         : name == "never" ? ColourChoice::never
                           : ColourChoice::automatic;
}

}  // namespace

void CommonOptions::addTo(CLI::App& command) {
  addOutput(command);
  addAppState(command);
  addFetching(command);
}

void CommonOptions::addOutput(CLI::App& command) {
  command.add_option("-o", outputPath_, "Write there, not to standard output")
      ->type_name("FILE")
      ->check(notEmpty("takes the name of a file"))
      ->group(kOutput);
  command
      .add_option_function<std::string>(
          "--color", [this](const std::string& name) { colours_ = colourChoice(name); },
          "When to use colours; auto (default): on a terminal, unless NO_COLOR is set or TERM is "
          "dumb, and always where CLICOLOR_FORCE is set")
      ->type_name("WHEN")
      ->check(oneOf({"auto", "always", "never"}))
      ->group(kOutput);
  command.add_flag("--debug", debug_, "Write the parser's log lines to standard error")
      ->group(kOutput);
}

void CommonOptions::addAppState(CLI::App& command) {
  command
      .add_option("--blocked-categories", blockedCategories_,
                  "Ad categories that the app blocks, separated by \",\" and taken as they stand; "
                  "an ad with one of them ends with error 205")
      ->type_name("LIST")
      ->check(utf8Text())
      ->group(kAppState);
  command
      .add_option("--session-id", sessionId_, "Fills [TAMZO_SESSION_ID] in the page of a VPAID ad")
      ->type_name("ID")
      ->check(utf8Text())
      ->group(kAppState);
}

void CommonOptions::addFetching(CLI::App& command) {
  command
      .add_option("--timeout", timeout_,
                  "Longest time that one fetch may take, in seconds (default 15)")
      ->type_name("SECONDS")
      ->check(seconds())
      ->group(kFetching);
  command
      .add_option("--max-body", maxBody_,
                  "Largest body that one fetch may bring, in bytes (default 16777216)")
      ->type_name("BYTES")
      ->transform(wholeNumber(1, std::numeric_limits<std::size_t>::max(),
                              "a whole number of bytes above 0"))
      ->group(kFetching);
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
    host.writeLog = writeLogLine;
  }
  TamzoHost::set(std::move(host));
}

}  // namespace tamzo::command
