#include "tools/ParseCommand.h"

#include <unistd.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "explain/Explainer.h"
#include "explain/ExplanationJson.h"
#include "tamzo/sdk/TamzoHost.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/vast/RecordJson.h"
#include "tools/Arguments.h"
#include "tools/ChainFiles.h"
#include "tools/CommonOptions.h"
#include "tools/Help.h"
#include "tools/HtmlReport.h"
#include "tools/Output.h"
#include "tools/Response.h"
#include "tools/Terminal.h"
#include "tools/TextReport.h"

namespace tamzo::command {
namespace {

constexpr int kNoDescriptor = -1;

struct Request {
  CommonOptions common;
  ChainFiles files;
  std::vector<std::string> inputs;
  std::string format = "text";
  bool isExplained = false;
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

// The lines of the log, as far as a page has room for them; they go where they went before too.
void keepLog(const std::shared_ptr<std::vector<std::string>>& lines) {
  constexpr std::size_t kMostLines = 2000;
  TamzoHost host = *TamzoHost::get();
  host.writeLog = [lines, before = host.writeLog,
                   isShown = isTamzoDebugEnabled.load()](std::string_view line) {
    if (lines->size() < kMostLines) {
      lines->emplace_back(line.substr(0, kMostLines));
    }
    if (isShown) {
      before(line);
    }
  };
  isTamzoDebugEnabled = true;
  TamzoHost::set(std::move(host));
}

int run(const Request& options) {
  options.common.apply();
  const auto log = std::make_shared<std::vector<std::string>>();
  if (options.format == "html") {
    keepLog(log);
  }
  const bool isJson = options.format == "json";
  explain::Explainer explainer;
  const bool isExplained = options.isExplained || !isJson;
  const auto ad =
      parseResponse(options.inputs, "parse", options.files, isExplained ? &explainer : nullptr);
  Output output(options.common.outputPath());
  if (!isExplained) {
    output.writeJson(recordAsJson(*ad, JsonLayout::indented) + "\n");
  } else if (const auto why = explainer.explain(*ad); isJson) {
    output.writeJson(explain::recordWithExplanation(*ad, why, JsonLayout::indented) + "\n");
  } else if (options.format == "html") {
    output.writeLines(htmlReport(*ad, why, *log));
  } else {
    output.write(textReport(*ad, why, styleFor(output, options.common.colours())));
  }
  output.finish();
  return statusOf(*ad);
}

}  // namespace

void addParseCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<Request>();
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
  command
      .add_option("--format", options->format,
                  "text (default) or html for people, json for programs")
      ->type_name("text|json|html")
      ->check(oneOf({"text", "json", "html"}))
      ->group("Output");
  command
      .add_flag("--explain", options->isExplained,
                "With the JSON, say why it is as it is; the other formats always do")
      ->group("Output");
  options->common.addTo(command);
  options->files.addTo(command);
  command.final_callback([options, &status] { status = run(*options); });
}

}  // namespace tamzo::command
