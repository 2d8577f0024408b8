#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

namespace tamzo::command {

/// The options of what saves a chain and plays it again.
struct ChainFiles {
  std::string savePath;    ///< "": nothing is saved
  std::string replayPath;  ///< "": servers are asked

  void addTo(CLI::App& command) {
    command.add_option("--save", savePath, "Save every document of the chain there, as HAR 1.2")
        ->type_name("FILE")
        ->group("Fetching");
    command
        .add_option("--replay", replayPath,
                    "Answer every fetch from that HAR and ask no server; without INPUT, its first "
                    "VAST document is parsed")
        ->type_name("FILE")
        ->group("Fetching");
  }
};

}  // namespace tamzo::command
