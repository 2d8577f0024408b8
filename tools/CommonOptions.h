#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "tools/Terminal.h"

namespace tamzo::command {

/// The options that every subcommand takes, in the groups of the help.
class CommonOptions {
 public:
  void addTo(CLI::App& command);

  /// Sets the SDK's state, log and fetch limits from them.
  void apply() const;

  /// "" for standard output.
  const std::string& outputPath() const { return outputPath_; }
  ColourChoice colours() const { return colours_; }

 private:
  void addOutput(CLI::App& command);
  void addAppState(CLI::App& command);
  void addFetching(CLI::App& command);

  std::string outputPath_;
  ColourChoice colours_ = ColourChoice::automatic;
  bool debug_ = false;

  std::optional<std::string> blockedCategories_;
  std::optional<std::string> sessionId_;

  std::optional<std::string> timeout_;
  std::optional<std::size_t> maxBody_;
};

}  // namespace tamzo::command
