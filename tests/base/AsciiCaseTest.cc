#include "base/AsciiCase.h"

#include <gtest/gtest.h>

namespace tamzo::testing {
namespace {

TEST(AsciiCaseTest, LettersAreEqualInAnyCaseAndNothingElseIs) {
  EXPECT_TRUE(equalsInAnyCase("", ""));
  EXPECT_TRUE(equalsInAnyCase("aZ-09.", "Az-09."));
  EXPECT_FALSE(equalsInAnyCase("a", "b"));
  EXPECT_FALSE(equalsInAnyCase("a", "aa"));
  EXPECT_FALSE(equalsInAnyCase("@", "`"));
  EXPECT_FALSE(equalsInAnyCase("[", "{"));
  EXPECT_FALSE(equalsInAnyCase("\xC3\x84", "\xC3\xA4"));
}

}  // namespace
}  // namespace tamzo::testing
