#include "tools/PageCommand.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tamzo/sdk/TamzoAssetsManager.h"
#include "tamzo/sdk/TamzoHost.h"
#include "tools/Arguments.h"
#include "tools/ChainFiles.h"
#include "tools/CommandError.h"
#include "tools/CommonOptions.h"
#include "tools/Help.h"
#include "tools/Input.h"
#include "tools/Output.h"
#include "tools/Response.h"
#include "tools/StandardError.h"

namespace tamzo::command {
namespace {

struct PageOptions {
  CommonOptions common;
  ChainFiles files;
  std::vector<std::string> inputs;
  std::optional<std::string> templatePath;
};

std::string_view whyThereIsNoPage(const TamzoVastAd& ad) {
  if (!ad.vastTagURI().hasCharacters()) {
    return "no page: the response is empty";
  }
  return TamzoAssetsManager::getVpaidWrapperData().hasCharacters()
             ? "no page: placeholders that are filled with placeholders make it too long"
             : "no page: the template is empty";
}

int run(const PageOptions& options) {
  options.common.apply();
  if (options.templatePath) {
    TamzoHost host = *TamzoHost::get();
    host.vpaidWrapperTemplate = [text = Text(readInput(*options.templatePath))] { return text; };
    TamzoHost::set(std::move(host));
  }
  const auto ad = parseResponse(options.inputs, "page", options.files);
  const Text page = ad->getVideoWAPView();
  Output output(options.common.outputPath());
  output.writeLines(page);
  output.finish();
  // A page that was made is kept, be it empty.
  if (!page.hasCharacters() && ad->vPaidHTML().isNil()) {
    complain(whyThereIsNoPage(*ad));
    return kSomeFailed;
  }
  return statusOf(*ad);
}

}  // namespace

void addPageCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<PageOptions>();
  CLI::App& command = *app.add_subcommand(
      "page", "Parse one response and print the page that plays its VPAID unit");
  command.footer(
      helpFooter("Where there is no page to print, a line says why, and the exit status is 1.\n"
                 "\n"
                 "Examples:\n"
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
