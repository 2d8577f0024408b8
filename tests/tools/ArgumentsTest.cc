#include "tools/Arguments.h"

#include <gtest/gtest.h>

namespace tamzo::testing {
namespace {

using Texts = std::vector<std::string>;

// What CLI11 makes of the arguments, by a command with one option, one flag and positionals.
struct Taken {
  Texts positionals;
  std::string option = "none";
  bool flag = false;
};

Taken take(const std::vector<const char*>& arguments) {
  std::vector<const char*> all{"program"};
  all.insert(all.end(), arguments.begin(), arguments.end());
  Taken taken;
  CLI::App app;
  command::addPositionals(app, "NAME", taken.positionals, "");
  app.add_option("--option,-o", taken.option);
  app.add_flag("--flag", taken.flag);
  app.parse(command::argumentsOf(static_cast<int>(all.size()), all.data()));
  return taken;
}

TEST(ArgumentsTest, PositionalsAreTakenAsTheyAreWritten) {
  const struct {
    std::vector<const char*> arguments;
    Texts positionals;
  } rows[] = {
      {{}, {}},
      {{""}, {""}},
      {{"[a,b]"}, {"[a,b]"}},
      {{"[]", "a,b", "", "{}", "%%", "[c"}, {"[]", "a,b", "", "{}", "%%", "[c"}},
      {{"a", "--flag", "b", "-o", "x", "c"}, {"a", "b", "c"}},
      {{"-", "-5", "--", "--flag", "--", "-o"}, {"-", "-5", "--flag", "--", "-o"}},
      {{"--", "--x=", "="}, {"--x=", "="}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(take(row.arguments).positionals, row.positionals);
  }
}

TEST(ArgumentsTest, AnOptionsValueMayBeEmpty) {
  const struct {
    std::vector<const char*> arguments;
    std::string option;
    Texts positionals;
  } rows[] = {
      {{"--option=", "a"}, "", {"a"}},        {{"--option", "", "a"}, "", {"a"}},
      {{"a", "--option="}, "", {"a"}},        {{"--option==", "a"}, "=", {"a"}},
      {{"--option=a=", "a"}, "a=", {"a"}},    {{"--option=[a,b]"}, "[a,b]", {}},
      {{"--option", "--flag"}, "--flag", {}},
  };
  for (const auto& row : rows) {
    const Taken taken = take(row.arguments);
    EXPECT_EQ(taken.option, row.option);
    EXPECT_EQ(taken.positionals, row.positionals);
    EXPECT_FALSE(taken.flag);
  }
}

TEST(ArgumentsTest, WholeNumbersAreDecimal) {
  for (std::string text : {"2", "02", "256"}) {
    EXPECT_EQ(command::wholeNumber(2, 256, "w")(text), "") << text;
  }
  std::string octal = "010";
  command::wholeNumber(2, 256, "w")(octal);
  EXPECT_EQ(octal, "10") << "as CLI11 reads it on";
  for (std::string text :
       {"", "1", "257", "0x10", "+3", " 3", "3 ", "-3", "3.0", "99999999999999999999"}) {
    EXPECT_EQ(command::wholeNumber(2, 256, "w")(text), "takes w, not \"" + text + "\"");
  }
}

}  // namespace
}  // namespace tamzo::testing
