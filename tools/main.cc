// tamzo-vast: what the parser makes of an ad server's response, for people and for programs.

#include <unistd.h>
#ifdef TAMZO_SCALABLE_ALLOCATOR
#include <tbb/scalable_allocator.h>
#endif

#include <CLI/CLI.hpp>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tamzo/base/Version.h"
#include "tools/Arguments.h"
#include "tools/BatchCommand.h"
#include "tools/CommandError.h"
#include "tools/Help.h"
#include "tools/Output.h"
#include "tools/PageCommand.h"
#include "tools/ParseCommand.h"
#include "tools/Process.h"
#include "tools/StandardError.h"
#include "tools/Suggestion.h"
#include "tools/Terminal.h"

namespace tamzo::command {
namespace {

constexpr const char* kVersion = "tamzo-vast " TAMZO_VERSION;

// The command that the arguments name, or that they have none.
const CLI::App& commandIn(const CLI::App& app) {
  const auto named = app.get_subcommands();
  return named.empty() ? app : *named.front();
}

std::string helpHint(const CLI::App& app) {
  const CLI::App& command = commandIn(app);
  const std::string name = &command == &app ? "" : " " + command.get_name();
  return " (see tamzo-vast" + name + " --help)";
}

std::vector<std::string> optionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      names.push_back("--" + name);
    }
  }
  return names;
}

// Somebody may have left the command out, or come from another that has none.
std::string commandMeantBy(const CLI::App& app, const std::string& word) {
  if (word.starts_with("http") || access(word.c_str(), F_OK) == 0) {
    return "; did you mean tamzo-vast parse " + word + "?";
  }
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) {
    names.push_back(command->get_name());
  }
  return didYouMean(word, names);
}

// What CLI11 found no place for comes before what it says of the rest. A command takes any number
// of inputs, so that a word that is left over stands where a command does.
void refuseUnexpected(const CLI::App& app) {
  for (const std::string& argument : app.remaining(/*recurse=*/true)) {
    if (!argument.starts_with('-')) {
      throw CommandError("there is no command \"" + argument + "\"; take parse, page or batch" +
                         commandMeantBy(app, argument) + helpHint(app));
    }
    if (argument != "--") {
      const std::string name = argument.substr(0, argument.find('='));
      throw CommandError("unknown option " + name + didYouMean(name, optionNames(commandIn(app))) +
                         helpHint(app));
    }
  }
}

// CLI11's words, or better ones: "--timeout: 1 required SECONDS missing", "--timeout: At Most 1
// required but received 2".
std::string wordsOf(const CLI::ParseError& error) {
  constexpr std::string_view kRequired = ": 1 required ";
  constexpr std::string_view kMissing = " missing";
  std::string text = error.what();
  const std::string name = text.substr(0, text.find(": "));
  const std::size_t required = text.find(kRequired);
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
    return "a command is missing; take parse, page or batch";
  }
  if (text.find(" required but received ") != std::string::npos) {
    return name + ": is given more than once";
  }
  if (required != std::string::npos && text.ends_with(kMissing)) {
    const std::size_t begin = required + kRequired.size();
    return name + ": takes " + text.substr(begin, text.size() - kMissing.size() - begin) +
           ", which is missing";
  }
  return text;
}

// The commands run from here.
void readArguments(CLI::App& app, int argc, char** argv) {
  try {
    app.parse(argumentsOf(argc, argv));
  } catch (const CLI::Success&) {
    throw;
  } catch (const CLI::ParseError& error) {
    refuseUnexpected(app);
    throw CommandError(wordsOf(error) + helpHint(app));
  }
}

void addCommands(CLI::App& app, int& status) {
  addParseCommand(app, status);
  addPageCommand(app, status);
  addBatchCommand(app, status);
  for (CLI::App* command : app.get_subcommands({})) {
    command->group("Commands");
    command->set_version_flag("--version", kVersion, "Say which release this is");
    command->get_help_ptr()->description("Say all this");
  }
}

int runCommand(int argc, char** argv) {
  CLI::App app("What the SDK's VAST parser makes of an ad server's response.", "tamzo-vast");
  app.formatter(std::make_shared<Help>(terminalColumns(STDOUT_FILENO)));
  app.require_subcommand(1);
  app.set_help_flag("-h,--help", "Say all this");
  app.set_version_flag("--version", kVersion, "Say which release this is");
  app.footer(
      helpFooter("Examples:\n"
                 "  tamzo-vast parse response.xml\n"
                 "  tamzo-vast page response.xml > page.html\n"
                 "  tamzo-vast batch responses/ > records.jsonl\n"
                 "\n"
                 "\"tamzo-vast COMMAND --help\" tells more about a command.\n"));
  int status = kWrongUsage;
  addCommands(app, status);
  try {
    readArguments(app, argc, argv);
  } catch (const CLI::Success& wanted) {
    std::ostringstream text;
    app.exit(wanted, text, text);
    Output output("");
    output.write(text.str());
    output.finish();
    return kAllPlayable;
  }
  return status;
}

#ifdef TAMZO_SCALABLE_ALLOCATOR
// It keeps what is freed, by size, and where memory is limited may come to keep all there is.
void limitAllocator() noexcept {
  constexpr std::size_t kPart = 4;
  if (const auto memory = freeMemory()) {
    scalable_allocation_mode(TBBMALLOC_SET_SOFT_HEAP_LIMIT,
                             static_cast<std::intptr_t>(*memory / kPart));
  }
}
#else
void limitAllocator() noexcept {}
#endif

}  // namespace
}  // namespace tamzo::command

int main(int argc, char** argv) {
  using namespace tamzo::command;
  holdStandardStreams();
  handleSignals();
  limitAllocator();
  try {
    return runCommand(argc, argv);
  } catch (const std::bad_alloc&) {
    complainOfMemory();
  } catch (const std::exception& error) {
    complain(error.what());
  }
  return kWrongUsage;
}
