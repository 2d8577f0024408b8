#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace tamzo::command {

/// The arguments of main(), as CLI::App::parse takes them.
std::vector<std::string> argumentsOf(int argc, const char* const* argv);

/// A positional that takes all the arguments that are there, each as it is written.
CLI::Option* addPositionals(CLI::App& command, const std::string& name,
                            std::vector<std::string>& values, const std::string& description);

/// The response of a command that reads one.
CLI::Option* addInput(CLI::App& command, std::vector<std::string>& inputs);

// What an option takes. The message of a value that is none of it follows the option's name and
// ": ".

/// Anything but "", for which the message is `why`.
CLI::Validator notEmpty(const std::string& why);

CLI::Validator utf8Text();

/// One of the names, of which there are two at least.
CLI::Validator oneOf(const std::vector<std::string>& names);

/// Decimal digits alone. The message is "takes <what>, not ...".
CLI::Validator wholeNumber(std::size_t least, std::size_t most, const std::string& what);

/// A decimal number above 0.
CLI::Validator seconds();

}  // namespace tamzo::command
