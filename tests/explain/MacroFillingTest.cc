#include "explain/MacroFilling.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/Growth.h"

namespace tamzo::explain {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

TEST(MacroFillingTest, valuesStandAsInTheUrl) {
  const auto filling = compareFilling("https://a/?c=[CACHEBUSTING]&t=[TIMESTAMP]&u=[CLIENTUA]#x",
                                      "https://a/?c=12345678&t=2026-01-17T08%3A15%3A07.127%2B00"
                                      "%3A00&u=a%2F1#x");
  EXPECT_THAT(filling.filled,
              ElementsAre(Pair("CACHEBUSTING", "12345678"),
                          Pair("TIMESTAMP", "2026-01-17T08%3A15%3A07.127%2B00%3A00"),
                          Pair("CLIENTUA", "a%2F1")));
  EXPECT_THAT(filling.unfilled, IsEmpty());
}

TEST(MacroFillingTest, macrosMayStandSideBySide) {
  const auto filling = compareFilling(" x[CACHEBUSTING][DOMAIN][SERVERSIDE]0[foo][CACHEBUSTING]",
                                      "x12345678-100[foo]12345678");
  EXPECT_THAT(filling.filled, ElementsAre(Pair("CACHEBUSTING", "12345678"), Pair("DOMAIN", "-1"),
                                          Pair("SERVERSIDE", "0")));
  EXPECT_THAT(filling.unfilled, ElementsAre("foo"));
}

TEST(MacroFillingTest, namesAreLettersDigitsAndUnderscores) {
  EXPECT_EQ(findBracketedName("[1a][][a-b][_b2]", 0).name, "_b2");
  EXPECT_FALSE(findBracketedName("[abc", 0));
  EXPECT_EQ(findBracketedName("[[a]]", 0).begin, 1U);
}

TEST(MacroFillingTest, whatWasFilledByOtherRulesIsLeftOut) {
  const auto filling = compareFilling("https://a/?[X]", "https://b/");
  EXPECT_THAT(filling.filled, IsEmpty());
  EXPECT_THAT(filling.unfilled, IsEmpty());
}

TEST(MacroFillingTest, costsTimeLinearInTheTag) {
  EXPECT_TRUE(tamzo::testing::growsLinearly(4000, [](std::size_t count) {
    std::string tag;
    std::string filled;
    for (std::size_t i = 0; i < count; ++i) {
      tag += "[CACHEBUSTING][TIMESTAMP]";
      filled += "12345678-1";
    }
    return [tag, filled] { compareFilling(tag, filled); };
  }));
}

}  // namespace
}  // namespace tamzo::explain
