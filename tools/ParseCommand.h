#pragma once

#include <CLI/CLI.hpp>

namespace tamzo::command {

/// Adds "parse" to the command: one response, its record shown. Where it is the one that the
/// arguments name, reading them runs it and sets `status`; what it throws comes through.
void addParseCommand(CLI::App& app, int& status);

}  // namespace tamzo::command
