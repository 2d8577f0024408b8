#include "tools/ParseCommand.h"

#include <memory>
#include <string>
#include <vector>

#include "tamzo/vast/RecordJson.h"
#include "tools/Arguments.h"
#include "tools/CommonOptions.h"
#include "tools/Output.h"
#include "tools/Response.h"
#include "tools/TextReport.h"

namespace tamzo::command {
namespace {

struct ParseOptions {
  CommonOptions common;
  std::vector<std::string> inputs;
  std::string format = "text";
};

CLI::Validator recordFormat() {
  return CLI::Validator(
      [](const std::string& format) {
        if (format == "html") {
          return std::string("html is not there yet; take text or json");
        }
        const bool isKnown = format == "text" || format == "json";
        return isKnown ? "" : "takes text or json, not \"" + format + "\"";
      },
      "");
}

int run(const ParseOptions& options) {
  options.common.apply();
  const auto ad = parseResponse(options.inputs);
  Output output(options.common.outputPath());
  output.write(options.format == "json" ? recordAsJson(*ad, JsonLayout::indented) + "\n"
                                        : textReport(*ad, output.takesColours()));
  output.finish();
  return statusOf(*ad);
}

}  // namespace

void addParseCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<ParseOptions>();
  CLI::App& command = *app.add_subcommand("parse", "Parse one response and show its record");
  command.footer(
      "Examples:\n"
      "  tamzo-vast parse response.xml\n"
      "  curl -s https://ads.example/vast | tamzo-vast parse --format json\n"
      "  tamzo-vast parse --debug 'https://ads.example/vast?id=7'\n\n"
      "Exit status: 0 nothing failed, 1 the ad failed (its record is shown all the same),\n"
      "2 wrong usage or an input that cannot be read.");
  addInput(command, options->inputs);
  command.add_option("--format", options->format, "text (default) for people, json for programs")
      ->type_name("text|json")
      ->check(recordFormat());
  options->common.addTo(command);
  command.final_callback([options, &status] { status = run(*options); });
}

}  // namespace tamzo::command
