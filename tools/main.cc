// tamzo-vast: what the parser makes of an ad server's response, for people and for programs.

#include <CLI/CLI.hpp>
#include <charconv>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "base/Utf8.h"
#include "tamzo/base/Version.h"
#include "tamzo/sdk/TamzoHost.h"
#include "tamzo/vast/RecordJson.h"
#include "tools/Batch.h"
#include "tools/CommandError.h"
#include "tools/CommonOptions.h"
#include "tools/Input.h"
#include "tools/Output.h"
#include "tools/TextReport.h"

namespace tamzo::command {
namespace {

constexpr const char* kVersion = "tamzo-vast " TAMZO_VERSION;
constexpr unsigned kMostThreads = 256;

// A text that begins with "http" is the parser's to fetch; anything else names a file.
Text responseOf(const std::string& input) {
  if (!input.starts_with("http")) {
    return Text(readInput(input));
  }
  if (!isUtf8(input)) {
    throw CommandError(input + ": is not UTF-8 text");
  }
  return Text(input);
}

std::shared_ptr<TamzoVastAd> parseInput(const std::optional<std::string>& input) {
  if (input && input->empty()) {
    throw CommandError("INPUT is empty; leave it out to read standard input");
  }
  auto ad = TamzoVastAd::initWithVast(responseOf(input.value_or("-")));
  if (ad == nullptr) {
    throw CommandError("out of memory");
  }
  return ad;
}

int statusOf(const TamzoVastAd& ad) {
  return ad.errorCode() == kNoError ? kAllPlayable : kSomeFailed;
}

// The inputs that no option of `command` took: all but the first. What looks like an option and
// does not stand after "--" is one that there is not.
std::vector<std::string> furtherInputs(const CLI::App& command) {
  std::vector<std::string> inputs;
  bool mayBeOption = true;
  for (const std::string& extra : command.remaining()) {
    if (mayBeOption && extra == "--") {
      mayBeOption = false;
    } else if (mayBeOption && extra.starts_with("-") && extra != "-") {
      throw CommandError("unknown option " + extra + " (see tamzo-vast --help)");
    } else {
      inputs.push_back(extra);
    }
  }
  return inputs;
}

void refuseFurtherInputs(const CLI::App& command) {
  if (const auto inputs = furtherInputs(command); !inputs.empty()) {
    throw CommandError("one input at a time: \"" + inputs.front() + "\" is one too many");
  }
}

struct Parse {
  CommonOptions common;
  CLI::App* command = nullptr;
  std::optional<std::string> input;
  std::string format = "text";

  void addTo(CLI::App& app) {
    command = app.add_subcommand("parse", "Parse one response and show its record");
    command->footer(
        "Examples:\n"
        "  tamzo-vast parse response.xml\n"
        "  curl -s https://ads.example/vast | tamzo-vast parse --format json\n"
        "  tamzo-vast parse --debug 'https://ads.example/vast?id=7'\n\n"
        "Exit status: 0 the ad can be played, 1 it cannot (its record is shown all the same),\n"
        "2 wrong usage or an input that cannot be read.");
    command->add_option("INPUT", input,
                        "A file; \"-\" or nothing for standard input; a text that begins with "
                        "\"http\" is fetched");
    command->add_option("--format", format, "text (default) for people, json for programs")
        ->type_name("text|json");
    common.addTo(*command);
  }

  int run() const {
    refuseFurtherInputs(*command);
    if (format == "html") {
      throw CommandError("--format html is not there yet; take text or json");
    }
    if (format != "text" && format != "json") {
      throw CommandError("--format takes text or json, not \"" + format + "\"");
    }
    common.apply();
    const auto ad = parseInput(input);
    Output output(common.outputPath());
    output.write(format == "json" ? recordAsJson(*ad, JsonLayout::indented) + "\n"
                                  : textReport(*ad, output.takesColours()));
    output.finish();
    return statusOf(*ad);
  }
};

struct Page {
  CommonOptions common;
  CLI::App* command = nullptr;
  std::optional<std::string> input;
  std::optional<std::string> templatePath;

  void addTo(CLI::App& app) {
    command = app.add_subcommand("page",
                                 "Parse one response and print the page that plays its VPAID unit");
    command->footer("Example:\n  tamzo-vast page --session-id 42 response.xml > page.html");
    command->add_option("INPUT", input,
                        "A file; \"-\" or nothing for standard input; a text that begins with "
                        "\"http\" is fetched");
    command->add_option("--template", templatePath, "The page template; default: the SDK's own")
        ->type_name("FILE");
    common.addTo(*command);
  }

  int run() const {
    refuseFurtherInputs(*command);
    common.apply();
    if (templatePath && templatePath->empty()) {
      throw CommandError("--template takes the name of a file");
    }
    if (templatePath) {
      TamzoHost host = *TamzoHost::get();
      host.vpaidWrapperTemplate = [text = Text(readInput(*templatePath))] { return text; };
      TamzoHost::set(std::move(host));
    }
    const auto ad = parseInput(input);
    Output output(common.outputPath());
    output.write(ad->getVideoWAPView());
    output.finish();
    return statusOf(*ad);
  }
};

struct BatchCommand {
  CommonOptions common;
  CLI::App* command = nullptr;
  std::optional<std::string> firstPath;
  std::optional<std::string> threads;

  void addTo(CLI::App& app) {
    command = app.add_subcommand("batch", "Parse many responses, one line of JSON for each");
    command->footer(
        "Without PATH, every line of standard input is a JSON object\n"
        "  {\"id\": anything, \"vast\": \"the response\"}\n"
        "and is answered, in input order, with one line\n"
        "  {\"id\": ..., \"record\": {...}}   or   {\"id\": ..., \"error\": \"why\"}\n\n"
        "Example:\n  tamzo-vast batch -j 4 responses/ > records.jsonl");
    // CLI11 would read brackets around a PATH as a list of its own if it took them all.
    command->add_option("PATH...", firstPath, "Files, or folders whose *.xml files are taken")
        ->type_name("");
    command->add_option("-j", threads, "Threads; default: one for each core")->type_name("N");
    common.addTo(*command);
  }

  int run() const {
    common.apply();
    std::vector<std::string> paths = furtherInputs(*command);
    if (firstPath) {
      paths.insert(paths.begin(), *firstPath);
    }
    return runBatch(paths, threadCount(), common.outputPath());
  }

 private:
  unsigned threadCount() const {
    if (!threads) {
      return std::max(1U, std::thread::hardware_concurrency());
    }
    unsigned count = 0;
    const char* end = threads->data() + threads->size();
    const auto [parsed, error] = std::from_chars(threads->data(), end, count);
    if (error != std::errc() || parsed != end || count == 0 || count > kMostThreads) {
      throw CommandError("-j takes a whole number from 1 to 256, not \"" + *threads + "\"");
    }
    return count;
  }
};

void checkCommand(std::string_view name) {
  if (!name.starts_with('-') && name != "parse" && name != "page" && name != "batch") {
    throw CommandError("there is no command \"" + std::string(name) +
                       "\"; take parse, page or batch");
  }
}

// In the order that CLI11 wants, from the last to the first. It would pass over an empty value
// after "=".
std::vector<std::string> argumentsFrom(int argc, char** argv) {
  std::vector<std::string> arguments;
  for (int i = argc - 1; i > 0; --i) {
    const std::string_view argument = argv[i];
    if (argument.starts_with("--") && argument.find('=') == argument.size() - 1) {
      arguments.emplace_back();
      arguments.emplace_back(argument.substr(0, argument.size() - 1));
    } else {
      arguments.emplace_back(argument);
    }
  }
  return arguments;
}

int runCommand(int argc, char** argv) {
  if (argc > 1) {
    checkCommand(argv[1]);
  }
  CLI::App app("What the SDK's VAST parser makes of an ad server's response.", "tamzo-vast");
  app.require_subcommand(1);
  app.set_version_flag("--version", kVersion);
  app.footer("\"tamzo-vast COMMAND --help\" tells more about a command.");
  Parse parse;
  Page page;
  BatchCommand batch;
  parse.addTo(app);
  page.addTo(app);
  batch.addTo(app);
  for (CLI::App* command : app.get_subcommands({})) {
    command->set_version_flag("--version", kVersion);
    command->allow_extras();
  }
  try {
    app.parse(argumentsFrom(argc, argv));
  } catch (const CLI::Success& wanted) {
    return app.exit(wanted);  // help or version, on standard output
  } catch (const CLI::ParseError& error) {
    throw CommandError(std::string(error.what()) + " (see tamzo-vast --help)");
  }
  if (app.got_subcommand("parse")) {
    return parse.run();
  }
  return app.got_subcommand("page") ? page.run() : batch.run();
}

}  // namespace
}  // namespace tamzo::command

int main(int argc, char** argv) {
  using namespace tamzo::command;
  try {
    return runCommand(argc, argv);
  } catch (const std::exception& error) {
    complain(error.what());
    return kWrongUsage;
  }
}
