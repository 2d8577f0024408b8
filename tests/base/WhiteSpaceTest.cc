#include "base/WhiteSpace.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Growth.h"

namespace tamzo::testing {
namespace {

// Every character of Unicode's property White_Space.
const std::vector<std::string> kWhiteSpace{
    "\t",           "\n",           "\v",           "\f",           "\r",           " ",
    "\xC2\x85",     "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82",
    "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86", "\xE2\x80\x87", "\xE2\x80\x88",
    "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F",
    "\xE3\x80\x80",
};

// Characters that look or sound like white space and are none.
const std::vector<std::string> kNoWhiteSpace{
    "x",
    std::string(1, '\0'),
    "\x1B",
    "\x1C",
    "\x1F",
    "\xC2\x84",
    "\xC2\x86",
    "\xC2\xAD",
    "\xE1\xA0\x8E",
    "\xE2\x80\x8B",
    "\xE2\x80\x8D",
    "\xE2\x81\xA0",
    "\xEF\xBB\xBF",
    "\xF0\x9F\x98\x80",
};

TEST(WhiteSpace, IsUnicodes) {
  for (const std::string& space : kWhiteSpace) {
    EXPECT_EQ(whiteSpaceAt(space, 0), space.size()) << ::testing::PrintToString(space);
    EXPECT_EQ(whiteSpaceAt("ab" + space + "cd", 2), space.size())
        << ::testing::PrintToString(space);
  }
  for (const std::string& other : kNoWhiteSpace) {
    EXPECT_EQ(whiteSpaceAt(other, 0), 0U) << ::testing::PrintToString(other);
  }
  EXPECT_EQ(whiteSpaceAt("", 0), 0U);
  EXPECT_EQ(whiteSpaceAt(" ", 1), 0U);
}

TEST(WhiteSpace, IsNotFoundInAPartOfACharacter) {
  for (const std::string& space : kWhiteSpace) {
    for (std::size_t length = 1; length < space.size(); ++length) {
      EXPECT_EQ(whiteSpaceAt(std::string_view(space).substr(0, length), 0), 0U)
          << ::testing::PrintToString(space);
    }
  }
}

TEST(FindWhiteSpace, GivesTheFirstAtOrAfterAPlace) {
  EXPECT_EQ(findWhiteSpace("", 0), 0U);
  EXPECT_EQ(findWhiteSpace("abc", 0), 3U);
  EXPECT_EQ(findWhiteSpace("abc", 3), 3U);
  EXPECT_EQ(findWhiteSpace(" a b", 0), 0U);
  EXPECT_EQ(findWhiteSpace(" a b", 1), 2U);
  EXPECT_EQ(findWhiteSpace(" a b", 3), 4U);
  for (const std::string& space : kWhiteSpace) {
    EXPECT_EQ(findWhiteSpace("\xC3\xA4\xE2\x82\xAC" + space + "x ", 0), 5U)
        << ::testing::PrintToString(space);
  }
  for (const std::string& other : kNoWhiteSpace) {
    EXPECT_EQ(findWhiteSpace(other + " ", 0), other.size()) << ::testing::PrintToString(other);
  }
}

TEST(WithoutLeadingWhiteSpace, LeavesTheEndAlone) {
  EXPECT_EQ(withoutLeadingWhiteSpace(""), "");
  EXPECT_EQ(withoutLeadingWhiteSpace(" \n\xE3\x80\x80"), "");
  EXPECT_EQ(withoutLeadingWhiteSpace("\t\xC2\xA0 a b "), "a b ");
  EXPECT_EQ(withoutLeadingWhiteSpace("\xC2 a"), "\xC2 a") << "half a character stays";
  for (const std::string& other : kNoWhiteSpace) {
    EXPECT_EQ(withoutLeadingWhiteSpace(" " + other + " "), other + " ")
        << ::testing::PrintToString(other);
  }
}

TEST(TrimWhiteSpace, TakesItOffBothEndsOnly) {
  for (const std::string& space : kWhiteSpace) {
    EXPECT_EQ(trimWhiteSpace(space + space + "a" + space + "b" + space), "a" + space + "b")
        << ::testing::PrintToString(space);
    EXPECT_EQ(trimWhiteSpace(space), "") << ::testing::PrintToString(space);
  }
  for (const std::string& other : kNoWhiteSpace) {
    EXPECT_EQ(trimWhiteSpace(" " + other + " "), other) << ::testing::PrintToString(other);
  }
  EXPECT_EQ(trimWhiteSpace(""), "");
  EXPECT_EQ(trimWhiteSpace("\xA0"), "\xA0") << "a stray byte stays";
}

TEST(TrimWhiteSpace, GivesAPartOfTheTextItself) {
  const std::string_view text = "  middle  ";
  EXPECT_EQ(trimWhiteSpace(text).data(), text.data() + 2);
}

TEST(TrimWhiteSpace, LooksAtATextOnce) {
  for (const std::string& space : {std::string("\xE3\x80\x80"), std::string(" ")}) {
    EXPECT_TRUE(growsLinearly(20'000, [&space](std::size_t size) {
      std::string around;
      while (around.size() < size) {
        around += space;
      }
      return [text = around + "a" + around] { EXPECT_EQ(trimWhiteSpace(text), "a"); };
    })) << ::testing::PrintToString(space);
  }
}

template <typename Value>
struct ScanRow {
  std::string_view text;
  Value value;
};

TEST(RemoveNewlines, TakesOutEveryNewlineAndNoOtherWhiteSpace) {
  const std::vector<ScanRow<std::string_view>> rows{
      {"", ""},
      {"plain", "plain"},
      {"a\nb", "ab"},
      {"a\r\nb", "ab"},
      {"\va\fb\r", "ab"},
      {"a\xC2\x85"
       "b",
       "ab"},
      {"a\xE2\x80\xA8"
       "b\xE2\x80\xA9",
       "ab"},
      {"a\tb c\xC2\xA0"
       "d",
       "a\tb c\xC2\xA0"
       "d"},
      {"a\xE2\x80\xA7"
       "b\xE2\x80\xAA",
       "a\xE2\x80\xA7"
       "b\xE2\x80\xAA"},
      {"\n\n\n", ""},
      {"\xE2\x80", "\xE2\x80"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(removeNewlines(row.text), row.value) << ::testing::PrintToString(row.text);
  }
}

}  // namespace
}  // namespace tamzo::testing
