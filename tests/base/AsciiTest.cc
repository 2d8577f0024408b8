#include "base/Ascii.h"

#include <gtest/gtest.h>

namespace tamzo::testing {
namespace {

TEST(AsciiTest, LettersAreEqualInAnyCaseAndNothingElseIs) {
  EXPECT_TRUE(equalsInAnyCase("", ""));
  EXPECT_TRUE(equalsInAnyCase("aZ-09.", "Az-09."));
  EXPECT_FALSE(equalsInAnyCase("a", "b"));
  EXPECT_FALSE(equalsInAnyCase("a", "aa"));
  EXPECT_FALSE(equalsInAnyCase("@", "`"));
  EXPECT_FALSE(equalsInAnyCase("[", "{"));
  EXPECT_FALSE(equalsInAnyCase("\xC3\x84", "\xC3\xA4"));
}

TEST(AsciiTest, NoOtherByteIsALetterOrADigit) {
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    const bool isLetter = (byte >= 0x41 && byte <= 0x5A) || (byte >= 0x61 && byte <= 0x7A);
    const bool isDigit = byte >= 0x30 && byte <= 0x39;
    EXPECT_EQ(isAsciiLetter(c), isLetter) << byte;
    EXPECT_EQ(isAsciiDigit(c), isDigit) << byte;
    EXPECT_EQ(isAsciiAlphanumeric(c), isLetter || isDigit) << byte;
    EXPECT_EQ(isBeyondAscii(c), byte >= 0x80) << byte;
  }
}

}  // namespace
}  // namespace tamzo::testing
