#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tamzo/net/Fetch.h"
#include "tools/Terminal.h"

namespace tamzo::command {

/// The options that every subcommand takes, in the groups of the help.
class CommonOptions {
 public:
  void addTo(CLI::App& command);

  /// Sets the SDK's state, log, fetch limits and requests from them. Throws CommandError for what
  /// cannot be sent or read.
  void apply() const;

  /// "" for standard output.
  const std::string& outputPath() const { return outputPath_; }
  ColourChoice colours() const { return colours_; }

 private:
  void addOutput(CLI::App& command);
  void addAppState(CLI::App& command);
  void addFetching(CLI::App& command);
  void addRequests(CLI::App& command);
  FetchLimits fetchLimits(FetchLimits limits) const;
  FetchOptions fetchOptions() const;

  std::string outputPath_;
  ColourChoice colours_ = ColourChoice::automatic;
  bool debug_ = false;

  std::optional<std::string> blockedCategories_;
  std::optional<std::string> sessionId_;

  std::optional<std::string> timeout_;
  std::optional<std::string> totalTimeout_;
  std::optional<std::size_t> maxBody_;
  std::string userAgent_;
  std::vector<std::string> headers_;
  std::optional<std::string> proxy_;
  std::string caFile_;
  bool publicOnly_ = false;
};

}  // namespace tamzo::command
