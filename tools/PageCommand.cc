#include "tools/PageCommand.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tamzo/sdk/TamzoHost.h"
#include "tools/Arguments.h"
#include "tools/ChainFiles.h"
#include "tools/CommonOptions.h"
#include "tools/Help.h"
#include "tools/Input.h"
#include "tools/Output.h"
#include "tools/Response.h"

namespace tamzo::command {
namespace {

struct PageOptions {
  CommonOptions common;
  ChainFiles files;
  std::vector<std::string> inputs;
  std::optional<std::string> templatePath;
};

int run(const PageOptions& options) {
  options.common.apply();
  if (options.templatePath) {
    TamzoHost host = *TamzoHost::get();
    host.vpaidWrapperTemplate = [text = Text(readInput(*options.templatePath))] { return text; };
    TamzoHost::set(std::move(host));
  }
  const auto ad = parseResponse(options.inputs, "page", options.files);
  Output output(options.common.outputPath());
  output.writeLines(ad->getVideoWAPView());
  output.finish();
  return statusOf(*ad);
}

}  // namespace

void addPageCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<PageOptions>();
  CLI::App& command = *app.add_subcommand(
      "page", "Parse one response and print the page that plays its VPAID unit");
  command.footer(
      helpFooter("Examples:\n"
                 "  tamzo-vast page --session-id 42 response.xml > page.html\n"
                 "  tamzo-vast page --template mine.html -o page.html https://ads.example/vast\n"));
  addInput(command, options->inputs);
  command
      .add_option("--template", options->templatePath, "The page template; default: the SDK's own")
      ->type_name("FILE")
      ->check(notEmpty("takes the name of a file"))
      ->group("Output");
  options->common.addTo(command);
  options->files.addTo(command);
  command.final_callback([options, &status] { status = run(*options); });
}

}  // namespace tamzo::command
