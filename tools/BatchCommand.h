#pragma once

#include <CLI/CLI.hpp>

namespace tamzo::command {

/// Adds "batch" to the command: many responses, a line for each. Where it is the one that the
/// arguments name, reading them runs it and sets `status`; what it throws comes through.
void addBatchCommand(CLI::App& app, int& status);

}  // namespace tamzo::command
