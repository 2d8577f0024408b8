// tamzo-vast: what the parser makes of an ad server's response, for people and for programs.

#include <CLI/CLI.hpp>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "tamzo/base/Version.h"
#include "tools/Arguments.h"
#include "tools/BatchCommand.h"
#include "tools/CommandError.h"
#include "tools/PageCommand.h"
#include "tools/ParseCommand.h"
#include "tools/Process.h"

namespace tamzo::command {
namespace {

// What CLI11 found no place for comes before what it says of the rest. A command takes any number
// of inputs, so that a word that is left over stands where a command does.
void refuseUnexpected(const std::vector<std::string>& unexpected) {
  for (const std::string& argument : unexpected) {
    if (!argument.starts_with('-')) {
      throw CommandError("there is no command \"" + argument + "\"; take parse, page or batch");
    }
    if (argument != "--") {
      throw CommandError("unknown option " + argument + " (see tamzo-vast --help)");
    }
  }
}

// The commands run from here.
void readArguments(CLI::App& app, int argc, char** argv) {
  try {
    app.parse(argumentsOf(argc, argv));
  } catch (const CLI::Success&) {
    throw;
  } catch (const CLI::ParseError& error) {
    refuseUnexpected(app.remaining(/*recurse=*/true));
    throw CommandError(std::string(error.what()) + " (see tamzo-vast --help)");
  }
}

int runCommand(int argc, char** argv) {
  CLI::App app("What the SDK's VAST parser makes of an ad server's response.", "tamzo-vast");
  app.require_subcommand(1);
  app.set_version_flag("--version", "tamzo-vast " TAMZO_VERSION);
  app.footer("\"tamzo-vast COMMAND --help\" tells more about a command.");
  int status = kWrongUsage;
  addParseCommand(app, status);
  addPageCommand(app, status);
  addBatchCommand(app, status);
  for (CLI::App* command : app.get_subcommands({})) {
    command->set_version_flag("--version", "tamzo-vast " TAMZO_VERSION);
  }
  try {
    readArguments(app, argc, argv);
  } catch (const CLI::Success& wanted) {
    return app.exit(wanted);  // help or version, on standard output
  }
  return status;
}

}  // namespace
}  // namespace tamzo::command

int main(int argc, char** argv) {
  using namespace tamzo::command;
  holdStandardStreams();
  handleSignals();
  try {
    return runCommand(argc, argv);
  } catch (const std::bad_alloc&) {
    complainOfMemory();
  } catch (const std::exception& error) {
    complain(error.what());
  }
  return kWrongUsage;
}
