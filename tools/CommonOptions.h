#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

namespace tamzo::command {

/// The options that every subcommand takes.
class CommonOptions {
 public:
  void addTo(CLI::App& command);

  /// Sets the SDK's state, log and fetch limits from them.
  void apply() const;

  /// "" for standard output.
  const std::string& outputPath() const { return outputPath_; }

 private:
  std::string outputPath_;
  std::optional<std::string> blockedCategories_;
  std::optional<std::string> sessionId_;
  std::optional<std::string> timeout_;
  std::optional<std::size_t> maxBody_;
  bool debug_ = false;
};

}  // namespace tamzo::command
