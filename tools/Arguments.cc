#include "tools/Arguments.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <string_view>

#include "base/Numbers.h"
#include "base/Utf8.h"
#include "tools/Suggestion.h"

namespace tamzo::command {
namespace {

bool isDecimal(const std::string& text) {
  const std::size_t digits = text.find_first_of("0123456789");
  return digits != std::string::npos &&
         text.find_first_not_of("0123456789.") == std::string::npos &&
         text.find('.') == text.rfind('.');
}

bool isEmptyAssignment(std::string_view argument) {
  return argument.starts_with("--") && argument.find('=') == argument.size() - 1;
}

// A validator that leaves no trace in the help: the option's type says what it takes.
template <typename Check>
CLI::Validator validator(Check check) {
  return CLI::Validator(std::move(check), "");
}

}  // namespace

// CLI11 2.1.2 cannot tell "--option=" from "--option" and takes the next argument for the value, so
// that the two words "--option" and "" stand in for it.
std::vector<std::string> argumentsOf(int argc, const char* const* argv) {
  std::vector<std::string> arguments;
  bool mayBeOption = true;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    mayBeOption = mayBeOption && argument != "--";
    if (mayBeOption && isEmptyAssignment(argument)) {
      arguments.emplace_back(argument.substr(0, argument.size() - 1));
      arguments.emplace_back();
    } else {
      arguments.emplace_back(argument);
    }
  }
  return {arguments.rbegin(), arguments.rend()};  // CLI11 takes them from the end
}

CLI::Option* addPositionals(CLI::App& command, const std::string& name,
                            std::vector<std::string>& values, const std::string& description) {
  // What "allows extra arguments", as a list does, reads "[a,b]" as two of them. So this is one
  // value of more parts than can ever come, and "all" that come are enough.
  constexpr int kAll = CLI::detail::expected_max_vector_size;
  return command.add_option(name, values, description)
      ->allow_extra_args(false)
      ->expected(1)
      ->type_size(kAll, kAll)
      ->take_all();
}

CLI::Option* addInput(CLI::App& command, std::vector<std::string>& inputs) {
  CLI::Validator onlyOne = validator([](const std::string& input) {
    return "one input at a time: \"" + input + "\" is one too many";
  });
  return addPositionals(command, "INPUT", inputs,
                        "A file; \"-\" or nothing for standard input; a text that begins with "
                        "\"http\" is fetched")
      ->type_name("")
      ->check(notEmpty("is empty; leave it out to read standard input"))
      ->check(onlyOne.application_index(1));
}

CLI::Validator notEmpty(const std::string& why) {
  return validator([why](const std::string& text) { return text.empty() ? why : std::string(); });
}

CLI::Validator utf8Text() {
  return validator(
      [](const std::string& text) { return std::string(isUtf8(text) ? "" : "is not UTF-8 text"); });
}

CLI::Validator oneOf(const std::vector<std::string>& names) {
  return validator([names](const std::string& text) {
    const bool isKnown = std::find(names.begin(), names.end(), text) != names.end();
    return isKnown ? ""
                   : fmt::format("takes {} or {}, not \"{}\"{}",
                                 fmt::join(names.begin(), names.end() - 1, ", "), names.back(),
                                 text, didYouMean(text, names));
  });
}

CLI::Validator wholeNumber(std::size_t least, std::size_t most, const std::string& what) {
  return validator([=](std::string& text) {
    std::size_t number = 0;
    const char* end = text.data() + text.size();
    const auto [parsed, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || parsed != end || number < least || number > most) {
      return "takes " + what + ", not \"" + text + "\"";
    }
    text = std::to_string(number);  // CLI11 would take "010" for eight
    return std::string();
  });
}

CLI::Validator seconds() {
  return validator([](const std::string& text) {
    const bool isAboveNothing = isDecimal(text) && doubleValue(text) > 0.0;
    return isAboveNothing ? "" : "takes a number of seconds above 0, not \"" + text + "\"";
  });
}

}  // namespace tamzo::command
