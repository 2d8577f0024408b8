#include "tools/CommonOptions.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>

#include "base/Numbers.h"
#include "tamzo/sdk/TamzoHost.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "tools/Arguments.h"
#include "tools/CommandError.h"
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

FetchHeader headerOf(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) {
    throw CommandError("--header takes \"Name: value\", not \"" + text + "\"");
  }
  const std::size_t value = text.find_first_not_of(' ', colon + 1);
  return {text.substr(0, colon), value == std::string::npos ? "" : text.substr(value), {}};
}

void checkReadable(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             &std::fclose);
  // A folder can be opened, and not read.
  if (file == nullptr || (std::fgetc(file.get()) == EOF && std::ferror(file.get()) != 0)) {
    throw CommandError(path + ": " + std::strerror(errno));
  }
}

}  // namespace

void CommonOptions::addTo(CLI::App& command) {
  addOutput(command);
  addAppState(command);
  addFetching(command);
  addRequests(command);
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
      ->type_name("auto|always|never")
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
      .add_option(
          "--total-timeout", totalTimeout_,
          "Longest time that all fetches of a chain may take together, in seconds (default: "
          "none)")
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

void CommonOptions::addRequests(CLI::App& command) {
  command.add_option("--user-agent", userAgent_, "Sent with each request (default: none)")
      ->type_name("TEXT")
      ->group(kFetching);
  command
      .add_option("--header", headers_,
                  "Sent with each request, as \"Name: value\"; may be given several times")
      ->type_name("HEADER")
      ->allow_extra_args(false)
      ->group(kFetching);
  command
      .add_option("--proxy", proxy_,
                  "URL of the proxy, or none (default: what the environment says)")
      ->type_name("URL")
      ->check(notEmpty("takes the URL of a proxy, or none"))
      ->group(kFetching);
  command.add_option("--ca", caFile_, "Certificates to trust in place of the system's, in PEM")
      ->type_name("FILE")
      ->check(notEmpty("takes the name of a file"))
      ->group(kFetching);
  command
      .add_flag("--public-only", publicOnly_,
                "Fetch from public addresses only, whatever name or redirect leads elsewhere")
      ->group(kFetching);
}

FetchLimits CommonOptions::fetchLimits(FetchLimits limits) const {
  if (timeout_) {
    limits.totalSeconds = doubleValue(*timeout_);
    limits.connectSeconds = limits.totalSeconds;
  }
  if (totalTimeout_) {
    limits.chainSeconds = doubleValue(*totalTimeout_);
  }
  if (maxBody_) {
    limits.maxBodyBytes = *maxBody_;
  }
  return limits;
}

FetchOptions CommonOptions::fetchOptions() const {
  FetchOptions options;
  options.userAgent = userAgent_;
  for (const std::string& header : headers_) {
    options.headers.push_back(headerOf(header));
  }
  if (proxy_) {
    options.proxy = *proxy_ == "none" ? "" : *proxy_;
  }
  options.caFile = caFile_;
  options.publicAddressesOnly = publicOnly_;
  if (const std::string why = whyRefused(options); !why.empty()) {
    throw CommandError(why);
  }
  return options;
}

void CommonOptions::apply() const {
  TamzoHost host = *TamzoHost::get();
  host.fetchLimits = fetchLimits(host.fetchLimits);
  host.fetchOptions = fetchOptions();
  if (!caFile_.empty()) {
    checkReadable(caFile_);
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
