#include "tools/Suggestion.h"

#include <gtest/gtest.h>

namespace tamzo::testing {
namespace {

TEST(Suggestion, OneThatDiffersByASlipOrTwoIsMeant) {
  const std::vector<std::string> names{"--format", "--blocked-categories", "--debug", "--help"};
  const std::pair<const char*, const char*> rows[] = {
      {"--formt", "--format"},
      {"--fromat", "--format"},
      {"--formats", "--format"},
      {"--debgu", "--debug"},
      {"--dbug", "--debug"},
      {"--block", "--blocked-categories"},
      {"--xyz", ""},
      {"-", ""},
      {"", ""},
      {"--blocked-category", "--blocked-categories"},
      {"--dxbxgx", ""},
  };
  for (const auto& [typed, meant] : rows) {
    EXPECT_EQ(command::nearestName(typed, names), meant) << typed;
  }
  EXPECT_EQ(command::nearestName("pasre", {"parse", "page", "batch"}), "parse");
  EXPECT_EQ(command::nearestName("bathc", {"parse", "page", "batch"}), "batch");
  EXPECT_EQ(command::nearestName("show", {"parse", "page", "batch"}), "");
  EXPECT_EQ(command::nearestName(std::string(100'000, 'p'), {"parse"}), "");
}

TEST(Suggestion, ItIsWordedAsAQuestion) {
  EXPECT_EQ(command::didYouMean("--hlep", {"--help"}), "; did you mean --help?");
  EXPECT_EQ(command::didYouMean("--x", {"--help"}), "");
}

}  // namespace
}  // namespace tamzo::testing
