#pragma once

#include <CLI/CLI.hpp>

namespace tamzo::command {

/// Adds "page" to the command: one response, the page that plays it. Where it is the one that the
/// arguments name, reading them runs it and sets `status`; what it throws comes through.
void addPageCommand(CLI::App& app, int& status);

}  // namespace tamzo::command
