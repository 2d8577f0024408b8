#include "tools/BatchCommand.h"

#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tools/Arguments.h"
#include "tools/Batch.h"
#include "tools/CommonOptions.h"

namespace tamzo::command {
namespace {

constexpr unsigned kMostThreads = 256;

struct BatchOptions {
  CommonOptions common;
  std::vector<std::string> paths;
  unsigned threads = std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads);
};

int run(const BatchOptions& options) {
  options.common.apply();
  return runBatch(options.paths, options.threads, options.common.outputPath());
}

}  // namespace

void addBatchCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<BatchOptions>();
  CLI::App& command =
      *app.add_subcommand("batch", "Parse many responses, one line of JSON for each");
  command.footer(
      "Without PATH, every line of standard input is a JSON object\n"
      "  {\"id\": anything, \"vast\": \"the response\"}\n"
      "and is answered, in input order, with one line\n"
      "  {\"id\": ..., \"record\": {...}}   or   {\"id\": ..., \"error\": \"why\"}\n\n"
      "Example:\n  tamzo-vast batch -j 4 responses/ > records.jsonl");
  addPositionals(command, "PATH...", options->paths,
                 "Files, or folders whose *.xml files are taken")
      ->type_name("");
  command.add_option("-j", options->threads, "Threads; default: one for each core")
      ->type_name("N")
      ->transform(wholeNumber(1, kMostThreads, "a whole number from 1 to 256"));
  options->common.addTo(command);
  command.final_callback([options, &status] { status = run(*options); });
}

}  // namespace tamzo::command
