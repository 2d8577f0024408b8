#include "tools/BatchCommand.h"

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "explain/Rules.h"
#include "tools/Arguments.h"
#include "tools/Batch.h"
#include "tools/CommonOptions.h"
#include "tools/Help.h"
#include "tools/Input.h"
#include "tools/Suggestion.h"

namespace tamzo::command {
namespace {

constexpr unsigned kMostThreads = 256;
constexpr const char* kGroup = "Batch";

struct BatchOptions {
  CommonOptions common;
  BatchRequest request;
  bool isUnordered = false;
  bool isWithoutResponse = false;

  BatchOptions() {
    request.threads = std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads);
  }
};

std::vector<std::string> splitAtCommas(const std::string& list) {
  std::vector<std::string> parts;
  std::istringstream stream(list + ",");
  for (std::string part; std::getline(stream, part, ',');) {
    parts.push_back(part);
  }
  return parts;
}

CLI::Validator findingIds() {
  return CLI::Validator(
      [](const std::string& list) {
        for (const std::string& id : splitAtCommas(list)) {
          if (explain::findRule(id) == nullptr) {
            std::vector<std::string> names;
            for (const explain::Rule& rule : explain::rules()) {
              names.emplace_back(rule.id);
            }
            return "there is no finding \"" + id + "\"" + didYouMean(id, names);
          }
        }
        return std::string();
      },
      "");
}

CLI::Option* addFindings(CLI::App& command, const std::string& name, std::vector<std::string>& ids,
                         const std::string& description) {
  return command
      .add_option_function<std::string>(
          name, [&ids](const std::string& list) { ids = splitAtCommas(list); }, description)
      ->type_name("ID,...")
      ->check(findingIds())
      ->group(kGroup);
}

int run(const BatchOptions& options) {
  options.common.apply();
  BatchRequest request = options.request;
  request.inOrder = !options.isUnordered;
  request.form.content =
      options.isWithoutResponse ? RecordContent::withoutResponse : RecordContent::whole;
  request.outputPath = options.common.outputPath();
  if (request.paths.empty()) {
    sayThatInputIsAwaited("lines of JSON", "batch");
  }
  return runBatch(request);
}

void addInputs(CLI::App& command, BatchOptions& options) {
  addPositionals(command, "PATH...", options.request.paths,
                 "Files, URLs, files of lines (*.jsonl), or folders whose *.xml files are taken; "
                 "without any, lines of standard input")
      ->type_name("");
  command
      .add_flag("-r,--recursive", options.request.isRecursive,
                "Take the *.xml files of sub-folders as well")
      ->group(kGroup);
}

void addWays(CLI::App& command, BatchOptions& options) {
  command.add_option("-j", options.request.threads, "Threads; default: one for each core")
      ->type_name("N")
      ->transform(wholeNumber(1, kMostThreads, "a whole number from 1 to 256"))
      ->group(kGroup);
  command
      .add_flag("--unordered", options.isUnordered,
                "Give each answer as soon as it is there; default: in input order")
      ->group(kGroup);
}

void addAnswers(CLI::App& command, BatchOptions& options) {
  command
      .add_flag("--summary", options.request.isSummary,
                "No records: only the table of error codes, on standard output")
      ->group(kGroup);
  command
      .add_flag("--without-response", options.isWithoutResponse,
                "Leave the response's own text out of the records")
      ->group(kGroup);
  command
      .add_flag("--explain", options.request.form.hasExplanation,
                "Say in each answer why it is as it is, and count findings in the table")
      ->group(kGroup);
  command
      .add_option("--report", options.request.reportFolder,
                  "Write HTML there: an index, and a report for each response that failed")
      ->type_name("DIR")
      ->check(notEmpty("takes the name of a folder"))
      ->group(kGroup);
  addFindings(command, "--only", options.request.form.only,
              "Give only the answers with one of these findings");
  addFindings(command, "--fail-on", options.request.failOn,
              "End with status 1 when one of these findings was made");
  command.add_flag("-q,--quiet", options.request.isQuiet, "No progress bar and no table")
      ->group(kGroup);
}

}  // namespace

void addBatchCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<BatchOptions>();
  CLI::App& command =
      *app.add_subcommand("batch", "Parse many responses, one line of JSON for each");
  command.footer(
      helpFooter("Each line of standard input or of a *.jsonl file is a JSON object\n"
                 "  {\"id\": anything, \"vast\": \"the response\"}\n"
                 "and is answered with one line:\n"
                 "  {\"id\": ..., \"record\": {...}}   or\n"
                 "  {\"id\": ..., \"line\": N, \"error\": \"why\"}\n"
                 "The id of a file or URL is its PATH. At the end, a table on standard error\n"
                 "counts the responses by error code.\n"
                 "\n"
                 "Examples:\n"
                 "  tamzo-vast batch -r responses/ > records.jsonl\n"
                 "  tamzo-vast batch --summary monday.jsonl tuesday.jsonl\n"
                 "  tamzo-vast batch --without-response responses/ | jq .record.errorCode\n"
                 "  my-program | tamzo-vast batch -j 4 --unordered -q\n"));
  addInputs(command, *options);
  addWays(command, *options);
  addAnswers(command, *options);
  options->common.addTo(command);
  command.final_callback([options, &status] { status = run(*options); });
}

}  // namespace tamzo::command
