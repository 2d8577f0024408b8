#include "tools/CommonOptions.h"

#include <charconv>
#include <cstdio>
#include <mutex>

#include "base/Numbers.h"
#include "base/Utf8.h"
#include "tamzo/sdk/TamzoHost.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "tools/CommandError.h"

namespace tamzo::command {
namespace {

bool isDecimal(const std::string& text) {
  const std::size_t digits = text.find_first_of("0123456789");
  return digits != std::string::npos &&
         text.find_first_not_of("0123456789.") == std::string::npos &&
         text.find('.') == text.rfind('.');
}

double parseSeconds(const std::string& text) {
  const double seconds = isDecimal(text) ? doubleValue(text) : 0.0;
  if (!(seconds > 0.0)) {
    throw CommandError("--timeout takes a number of seconds above 0, not \"" + text + "\"");
  }
  return seconds;
}

std::size_t parseBytes(const std::string& text) {
  std::size_t bytes = 0;
  const char* end = text.data() + text.size();
  const auto [parsed, error] = std::from_chars(text.data(), end, bytes);
  if (error != std::errc() || parsed != end || bytes == 0) {
    throw CommandError("--max-body takes a whole number of bytes above 0, not \"" + text + "\"");
  }
  return bytes;
}

void requireUtf8(const char* option, const std::optional<std::string>& text) {
  if (text && !isUtf8(*text)) {
    throw CommandError(std::string(option) + " is not UTF-8 text");
  }
}

void logToStandardError(std::string_view line) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fputc('\n', stderr);
}

}  // namespace

void CommonOptions::addTo(CLI::App& command) {
  command.add_option("-o", outputPath_, "Write there, not to standard output")->type_name("FILE");
  command
      .add_option("--blocked-categories", blockedCategories_,
                  "Ad categories that the app blocks, separated by \",\" and taken as they stand; "
                  "an ad with one of them ends with error 205")
      ->type_name("LIST");
  command
      .add_option("--session-id", sessionId_, "Fills [TAMZO_SESSION_ID] in the page of a VPAID ad")
      ->type_name("ID");
  command.add_flag("--debug", debug_, "Write the parser's log lines to standard error");
  command
      .add_option("--timeout", timeout_,
                  "Longest time that one fetch may take, in seconds (default 15)")
      ->type_name("SECONDS");
  command
      .add_option("--max-body", maxBody_,
                  "Largest body that one fetch may bring, in bytes (default 16777216)")
      ->type_name("BYTES");
}

void CommonOptions::apply() const {
  if (outputPath_ && outputPath_->empty()) {
    throw CommandError("-o takes the name of a file");
  }
  requireUtf8("--blocked-categories", blockedCategories_);
  requireUtf8("--session-id", sessionId_);
  TamzoHost host = *TamzoHost::get();
  if (timeout_) {
    host.fetchLimits.totalSeconds = parseSeconds(*timeout_);
    host.fetchLimits.connectSeconds = host.fetchLimits.totalSeconds;
  }
  if (maxBody_) {
    host.fetchLimits.maxBodyBytes = parseBytes(*maxBody_);
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
