#include "tools/ParseCommand.h"

#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "tamzo/vast/RecordJson.h"
#include "tools/Arguments.h"
#include "tools/CommonOptions.h"
#include "tools/Help.h"
#include "tools/Output.h"
#include "tools/Response.h"
#include "tools/Terminal.h"
#include "tools/TextReport.h"

namespace tamzo::command {
namespace {

constexpr int kNoDescriptor = -1;

struct ParseOptions {
  CommonOptions common;
  std::vector<std::string> inputs;
  std::string format = "text";
};

// Where the report goes decides how it looks.
ReportStyle styleFor(const Output& output, ColourChoice colours) {
  ReportStyle style;
  style.withColours = showsColours(colours, output.path().empty() ? STDOUT_FILENO : kNoDescriptor);
  if (output.isTerminal()) {
    style.columns = output.columns();
  }
  return style;
}

int run(const ParseOptions& options) {
  options.common.apply();
  const auto ad = parseResponse(options.inputs, "parse");
  Output output(options.common.outputPath());
  if (options.format == "json") {
    output.writeJson(recordAsJson(*ad, JsonLayout::indented) + "\n");
  } else {
    output.write(textReport(*ad, styleFor(output, options.common.colours())));
  }
  output.finish();
  return statusOf(*ad);
}

}  // namespace

void addParseCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<ParseOptions>();
  CLI::App& command = *app.add_subcommand("parse", "Parse one response and show its record");
  command.footer(
      helpFooter("On a terminal, what is longer than a line is cut in the middle; -o FILE, a pipe\n"
                 "and --format json have it whole.\n"
                 "\n"
                 "Examples:\n"
                 "  tamzo-vast parse response.xml\n"
                 "  tamzo-vast parse --debug 'https://ads.example/vast?id=7'\n"
                 "  curl -s https://ads.example/vast | tamzo-vast parse --format json\n"
                 "  tamzo-vast parse --blocked-categories IAB25,IAB26 response.xml\n"));
  addInput(command, options->inputs);
  command.add_option("--format", options->format, "text (default) for people, json for programs")
      ->type_name("FORMAT")
      ->check(oneOf({"text", "json"}))
      ->group("Output");
  options->common.addTo(command);
  command.final_callback([options, &status] { status = run(*options); });
}

}  // namespace tamzo::command
