#include "tools/Help.h"

#include <algorithm>
#include <string_view>

namespace tamzo::command {
namespace {

constexpr std::size_t kMostColumns = 80;
constexpr std::size_t kFewestColumns = 40;
constexpr std::size_t kNameColumns = 26;

// Words and blanks at the start of a line stay; it goes on below its own beginning.
void appendWrapped(std::string& out, std::string_view line, std::size_t from, std::size_t to) {
  std::size_t column = from;
  bool isFirst = true;
  while (!line.empty()) {
    const std::size_t begin = std::min(line.find_first_not_of(' '), line.size());
    const std::size_t end = std::min(line.find(' ', begin), line.size());
    if (!isFirst && column + end > to) {
      out.append("\n").append(from, ' ').append(line, begin, end - begin);
      column = from + end - begin;
    } else {
      out.append(line, 0, end);
      column += end;
    }
    line.remove_prefix(end);
    isFirst = false;
  }
  out += '\n';
}

std::string wrapped(std::string_view text, std::size_t columns) {
  std::string out;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    const std::size_t indent = std::min(line.find_first_not_of(' '), line.size());
    out.append(indent, ' ');
    appendWrapped(out, line.substr(indent), indent, columns);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return out;
}

}  // namespace

Help::Help(std::size_t columns) : columns_(std::clamp(columns, kFewestColumns, kMostColumns)) {
  label("Positionals", "Input");
  label("SUBCOMMAND", "COMMAND");
}

std::string Help::make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const {
  return wrapped(app->get_description(), columns_) + "\n" + make_usage(app, name) +
         make_positionals(app) + groupsOf(app) + make_subcommands(app, mode) + "\n" +
         wrapped(app->get_footer(), columns_);
}

std::string Help::groupsOf(const CLI::App* app) const {
  std::string out;
  for (const std::string& group : app->get_groups()) {
    const auto options = app->get_options([&group](const CLI::Option* option) {
      return option->get_group() == group && option->nonpositional();
    });
    if (!group.empty() && !options.empty()) {
      out += make_group(group, false, options);
    }
  }
  return out;
}

std::string Help::make_subcommand(const CLI::App* app) const {
  return entry(app->get_name(), app->get_description());
}

std::string Help::make_option(const CLI::Option* option, bool isPositional) const {
  return entry(make_option_name(option, isPositional) + make_option_opts(option),
               make_option_desc(option));
}

std::string Help::entry(const std::string& name, const std::string& text) const {
  std::string out = "  " + name;
  const std::size_t column = std::min(kNameColumns, columns_ / 2);
  if (out.size() + 2 > column) {
    out += '\n';
    out.append(column, ' ');
  } else {
    out.append(column - out.size(), ' ');
  }
  appendWrapped(out, text, column, columns_);
  return out;
}

std::string helpFooter(const std::string& text) {
  return text +
         "\nExit status:\n"
         "  0  every record has error code 0\n"
         "  1  at least one has another; it is there all the same\n"
         "  2  wrong usage, an input that cannot be read, or an output that cannot be\n"
         "     written\n";
}

}  // namespace tamzo::command
