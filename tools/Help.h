#pragma once

#include <CLI/CLI.hpp>
#include <cstddef>
#include <string>

namespace tamzo::command {

/// The texts of --help, within 80 columns, or those of a narrower terminal.
class Help : public CLI::Formatter {
 public:
  explicit Help(std::size_t columns);

  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override;
  std::string make_subcommand(const CLI::App* app) const override;
  std::string make_option(const CLI::Option* option, bool isPositional) const override;

 private:
  std::string groupsOf(const CLI::App* app) const;
  std::string entry(const std::string& name, const std::string& text) const;

  std::size_t columns_;
};

/// What a command's help ends with: examples and what else there is to say, then the statuses.
std::string helpFooter(const std::string& text);

}  // namespace tamzo::command
