#include "base/Utf8.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Growth.h"

namespace tamzo::testing {
namespace {

using namespace std::string_view_literals;

struct Encoded {
  std::string_view bytes;
  char32_t value;
};

// The first and the last character of each length, and those around the surrogates.
const std::vector<Encoded> kCharacters{
    {"\0"sv, 0},
    {"a", U'a'},
    {"\x7F", 0x7F},
    {"\xC2\x80", 0x80},
    {"\xDF\xBF", 0x7FF},
    {"\xE0\xA0\x80", 0x800},
    {"\xED\x9F\xBF", 0xD7FF},
    {"\xEE\x80\x80", 0xE000},
    {"\xEF\xBF\xBD", 0xFFFD},
    {"\xEF\xBF\xBF", 0xFFFF},
    {"\xF0\x90\x80\x80", 0x10000},
    {"\xF4\x8F\xBF\xBF", 0x10FFFF},
};

// What begins no character, whatever follows.
const std::vector<std::string_view> kMalformed{
    // continuations on their own
    "\x80",
    "\xBF",
    "\x80\x80",
    // overlong
    "\xC0\x80",
    "\xC1\xBF",
    "\xE0\x80\x80",
    "\xE0\x9F\xBF",
    "\xF0\x80\x80\x80",
    "\xF0\x8F\xBF\xBF",
    // surrogates
    "\xED\xA0\x80",
    "\xED\xAF\xBF",
    "\xED\xB0\x80",
    "\xED\xBF\xBF",
    // beyond Unicode
    "\xF4\x90\x80\x80",
    "\xF5\x80\x80\x80",
    "\xF8\x88\x80\x80\x80",
    "\xFC\x84\x80\x80\x80\x80",
    "\xFE",
    "\xFF",
};

TEST(CharacterAt, DecodesACharacterAndTellsItsLength) {
  for (const Encoded& c : kCharacters) {
    for (const std::string_view after : {""sv, "x"sv, "\x80"sv, "\xF0\x9F\x98\x80"sv}) {
      const std::string text = "ab" + std::string(c.bytes) + std::string(after);
      const Character found = characterAt(text, 2);
      EXPECT_EQ(found.value, c.value) << ::testing::PrintToString(text);
      EXPECT_EQ(found.bytes, c.bytes.size()) << ::testing::PrintToString(text);
    }
  }
}

TEST(CharacterAt, TakesMalformedBytesOneByOne) {
  for (const std::string_view bytes : kMalformed) {
    for (const std::string_view after : {""sv, "x"sv, "\x80\x80\x80"sv, "\xC3\xA4"sv}) {
      const std::string text = std::string(bytes) + std::string(after);
      const Character found = characterAt(text, 0);
      EXPECT_EQ(found.value, U'\uFFFD') << ::testing::PrintToString(text);
      EXPECT_EQ(found.bytes, 1U) << ::testing::PrintToString(text);
    }
  }
}

TEST(CharacterAt, ATruncatedCharacterIsMalformed) {
  for (const Encoded& c : kCharacters) {
    for (std::size_t length = 1; length < c.bytes.size(); ++length) {
      const std::string front(c.bytes.substr(0, length));
      for (const std::string& text : {front, front + "x", front + c.bytes[0]}) {
        const Character found = characterAt(text, 0);
        EXPECT_EQ(found.value, U'\uFFFD') << ::testing::PrintToString(text);
        EXPECT_EQ(found.bytes, 1U) << ::testing::PrintToString(text);
      }
      const Character inside = characterAt(c.bytes, length);
      EXPECT_EQ(inside.value, U'\uFFFD') << "inside " << ::testing::PrintToString(c.bytes);
      EXPECT_EQ(inside.bytes, 1U);
    }
  }
}

TEST(CharacterAt, ReadsNothingBeyondTheText) {
  const std::string_view euro = "\xE2\x82\xAC";
  EXPECT_EQ(characterAt(euro.substr(0, 2), 0).bytes, 1U) << "the third byte is none of its own";
  EXPECT_EQ(characterAt(euro, 0).value, U'\u20AC');
}

TEST(IsUtf8, IsTrueForWellFormedBytesOnly) {
  EXPECT_TRUE(isUtf8(""));
  std::string all;
  for (const Encoded& c : kCharacters) {
    EXPECT_TRUE(isUtf8(c.bytes)) << ::testing::PrintToString(c.bytes);
    all += c.bytes;
    for (std::size_t length = 1; length < c.bytes.size(); ++length) {
      EXPECT_FALSE(isUtf8(c.bytes.substr(0, length))) << ::testing::PrintToString(c.bytes);
      EXPECT_FALSE(isUtf8(c.bytes.substr(length))) << ::testing::PrintToString(c.bytes);
    }
  }
  EXPECT_TRUE(isUtf8(all));
  for (const std::string_view bytes : kMalformed) {
    EXPECT_FALSE(isUtf8(bytes)) << ::testing::PrintToString(bytes);
    EXPECT_FALSE(isUtf8(all + std::string(bytes) + all)) << ::testing::PrintToString(bytes);
  }
}

TEST(IsShorterThan, CountsUtf16CodeUnits) {
  struct Case {
    std::string_view text;
    std::size_t length;
  };
  const std::vector<Case> cases{
      {"", 0},
      {"abc", 3},
      {"abcd", 4},
      {"\xC3\xA4\xC3\xB6\xC3\xBC", 3},          // two bytes each, one unit each
      {"\xE2\x82\xAC\xE2\x82\xAC", 2},          // three bytes each, one unit each
      {"\xF0\x9F\x98\x80", 2},                  // four bytes, a surrogate pair
      {"\xF0\x9F\x98\x80\xF0\x9F\x98\x80", 4},  // two pairs
      {"a\xF0\x9F\x98\x80", 3},
      {"\xEF\xBF\xBF", 1},      // the last character of one unit
      {"\xF0\x90\x80\x80", 2},  // the first of two
  };
  for (const Case& c : cases) {
    EXPECT_FALSE(isShorterThan(c.text, c.length)) << c.text;
    EXPECT_TRUE(isShorterThan(c.text, c.length + 1)) << c.text;
  }
}

TEST(IsShorterThan, CountsAMalformedByteAsOneUnit) {
  EXPECT_TRUE(isShorterThan("\xF0\x9F\x98", 4));
  EXPECT_FALSE(isShorterThan("\xF0\x9F\x98", 3));
  EXPECT_FALSE(isShorterThan("\xED\xA0\x80", 3)) << "a surrogate is no character in UTF-8";
  EXPECT_FALSE(isShorterThan(std::string(4, '\0'), 4)) << "NUL is one";
}

TEST(IsShorterThan, NothingIsShorterThanNothing) {
  EXPECT_FALSE(isShorterThan("", 0));
  EXPECT_TRUE(isShorterThan("", 1));
  EXPECT_FALSE(isShorterThan("a", 0));
}

TEST(IsShorterThan, LooksNoFurtherThanTheCount) {
  // Each byte of a long text is decoded for a long count, and for a short one none but the first.
  const std::string text(8'000'000, '\x80');
  const double begin = threadSeconds();
  EXPECT_TRUE(isShorterThan(text, text.size() + 1));
  const double whole = threadSeconds() - begin;
  double four = whole;
  for (int i = 0; i < 3; ++i) {
    const double before = threadSeconds();
    EXPECT_FALSE(isShorterThan(text, 4));
    four = std::min(four, threadSeconds() - before);
  }
  EXPECT_LT(four, whole / 100);
}

TEST(ByteOrderMarkOf, CountsItsBytesAtTheStartAlone) {
  EXPECT_EQ(byteOrderMarkOf("\xEF\xBB\xBF"), 3U);
  EXPECT_EQ(byteOrderMarkOf("\xEF\xBB\xBF<a/>"), 3U);
  EXPECT_EQ(byteOrderMarkOf("\xEF\xBB"), 0U);
  EXPECT_EQ(byteOrderMarkOf(" \xEF\xBB\xBF"), 0U);
  EXPECT_EQ(byteOrderMarkOf(""), 0U);
}

TEST(BeginningOf, CutsNoCharacterInTwo) {
  const std::string_view text = "a\xC3\xA9\xF0\x9F\x98\x80z";
  const std::size_t expected[] = {0, 1, 1, 3, 3, 3, 3, 7, 8, 8};
  for (std::size_t bytes = 0; bytes < std::size(expected); ++bytes) {
    EXPECT_EQ(beginningOf(text, bytes), text.substr(0, expected[bytes])) << bytes;
  }
  EXPECT_EQ(beginningOf("\x80\x80\x80", 2), "") << "what begins no character may go as a whole";
  EXPECT_EQ(beginningOf("", 2), "");
}

}  // namespace
}  // namespace tamzo::testing
