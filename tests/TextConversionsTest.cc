#include "base/Numbers.h"
#include "base/Utf8.h"
#include "base/WhiteSpace.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <limits>
#include <locale>
#include <string>
#include <string_view>
#include <vector>

#include "tamzo/sdk/TamzoAdDuration.h"

namespace tamzo::testing {
namespace {

constexpr std::int32_t kIntMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kIntMin = std::numeric_limits<std::int32_t>::min();

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

template <typename Value>
struct Row {
  std::string_view text;
  Value value;
};

TEST(IntegerValue, ReadsTheNumberAtTheFront) {
  const std::vector<Row<std::int32_t>> rows{
      {"", 0},
      {"0", 0},
      {"7", 7},
      {"-7", -7},
      {"+7", 7},
      {"  42", 42},
      {"\t\r\n 42 ", 42},
      {"\xC2\xA0\xE3\x80\x80"
       "5",
       5},
      {"007", 7},
      {"300px", 300},
      {"4.2", 4},
      {"4.9", 4},
      {"3e5", 3},
      {"0x1F", 0},
      {"1,000", 1},
      {"wide", 0},
      {"px300", 0},
      {"-", 0},
      {"+", 0},
      {"--5", 0},
      {"+-5", 0},
      {"- 5", 0},
      {" ", 0},
      {"2147483647", kIntMax},
      {"2147483648", kIntMax},
      {"99999999999999999999999999", kIntMax},
      {"-2147483648", kIntMin},
      {"-2147483649", kIntMin},
      {"-99999999999999999999999999", kIntMin},
      {"\xEF\xBC\x95", 0},  // a full-width five
  };
  for (const auto& row : rows) {
    EXPECT_EQ(integerValue(row.text), row.value) << '"' << row.text << '"';
  }
}

TEST(BoolValue, IsDecidedByTheFirstCharacterThatCounts) {
  const std::vector<Row<bool>> rows{
      {"", false},         {" ", false},   {"0", false},     {"000", false},  {"+", false},
      {"-", false},        {"no", false},  {"false", false}, {"F", false},    {"N", false},
      {"on", false},       {".1", false},  {"0.5", false},   {"a1", false},   {"0 1", false},
      {"- 1", false},      {"++1", false}, {"1", true},      {"9", true},     {"10", true},
      {"-1", true},        {"+1", true},   {"01", true},     {"-0001", true}, {"Y", true},
      {"y", true},         {"T", true},    {"t", true},      {"yes", true},   {"YES", true},
      {"true", true},      {"True", true}, {"tomato", true}, {"  yes", true}, {"\n\t1", true},
      {"\xC2\xA0y", true}, {"+0t", true},  {"00Y", true},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(boolValue(row.text), row.value) << '"' << row.text << '"';
  }
}

TEST(DoubleValue, ReadsTheDecimalNumberAtTheFront) {
  const std::vector<Row<double>> rows{
      {"", 0.0},
      {"0", 0.0},
      {"12.5", 12.5},
      {"-12.5", -12.5},
      {"+12.5", 12.5},
      {"  2.25", 2.25},
      {"\xE2\x80\xA8"
       "2.25",
       2.25},
      {".5", 0.5},
      {"-.5", -0.5},
      {"5.", 5.0},
      {"5.x", 5.0},
      {"1e3", 1000.0},
      {"1E3", 1000.0},
      {"1e+3", 1000.0},
      {"2.5e-3", 0.0025},
      {"1e", 1.0},
      {"1e+", 1.0},
      {"1ex", 1.0},
      {"3.75 USD", 3.75},
      {"3,75", 3.0},
      {"0.1", 0.1},
      {"123456789012345678", 123456789012345678.0},
      {"abc", 0.0},
      {".", 0.0},
      {"-", 0.0},
      {"--1", 0.0},
      {"+-1", 0.0},
      {"- 1", 0.0},
      {"e5", 0.0},
      {"$5", 0.0},
      {"0x1F", 0.0},
      {"0x1p3", 0.0},
      {"inf", 0.0},
      {"INFINITY", 0.0},
      {"-inf", 0.0},
      {"nan", 0.0},
      {"NaN", 0.0},
      {"nan(1)", 0.0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(doubleValue(row.text), row.value) << '"' << row.text << '"';
  }
}

TEST(DoubleValue, IsInfiniteForANumberTooLargeAndNoughtForOneTooSmall) {
  EXPECT_EQ(doubleValue("1e999"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(doubleValue("-1e999"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(doubleValue("1e-999"), 0.0);
  EXPECT_EQ(doubleValue(std::string(400, '9')), std::numeric_limits<double>::infinity());
}

TEST(FloatValue, IsRoundedOnceToSinglePrecision) {
  EXPECT_EQ(floatValue("0.1"), 0.1F);
  EXPECT_EQ(floatValue(" -1.5e2;"), -150.0F);
  EXPECT_EQ(floatValue(""), 0.0F);
  EXPECT_EQ(floatValue("nan"), 0.0F);
  EXPECT_EQ(floatValue("1e39"), std::numeric_limits<float>::infinity());
  // Just above half-way between two floats. Read as a double first it would fall on the middle,
  // and from there to the even neighbour below.
  constexpr std::string_view kAboveTheMiddle = "1.00000005960464477540";
  EXPECT_EQ(static_cast<float>(doubleValue(kAboveTheMiddle)), 1.0F);
  EXPECT_EQ(floatValue(kAboveTheMiddle), std::nextafter(1.0F, 2.0F));
}

class CommaPunctuation : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(Numbers, AreReadAlikeInALocaleWithADecimalComma) {
  // The C++ locale can be made here; of the C locale, one that is installed is taken.
  const std::string before = std::setlocale(LC_ALL, nullptr);
  const std::locale cppBefore =
      std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE", "fr_FR"}) {
    if (std::setlocale(LC_ALL, name) != nullptr) {
      break;
    }
  }
  const double asDouble = doubleValue("12.5");
  const double asDoubleWithComma = doubleValue("12,5");
  const float asFloat = floatValue("0.25");
  const std::int32_t asInteger = integerValue("1.500");
  std::locale::global(cppBefore);
  std::setlocale(LC_ALL, before.c_str());
  EXPECT_EQ(asDouble, 12.5);
  EXPECT_EQ(asDoubleWithComma, 12.0);
  EXPECT_EQ(asFloat, 0.25F);
  EXPECT_EQ(asInteger, 1);
}

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

TEST(RemoveNewlines, TakesOutEveryNewlineAndNoOtherWhiteSpace) {
  const std::vector<Row<std::string_view>> rows{
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
  };
  for (const Case& c : cases) {
    EXPECT_FALSE(isShorterThan(c.text, c.length)) << c.text;
    EXPECT_TRUE(isShorterThan(c.text, c.length + 1)) << c.text;
  }
}

TEST(AdDuration, ReadsAClockTimeInWholeSeconds) {
  const std::vector<Row<std::int64_t>> rows{
      {"00:00:30", 30},
      {"00:00:30.000", 30},
      {"00:00:30.999", 30},
      {" \n00:01:00\t", 60},
      {"01:02:03", 3723},
      {"1:2:3", 3723},
      {"100:00:00", 360000},
      {"00:00:00", 0},
      {"", 0},
      {"30", 0},
      {"00:30", 0},
      {"25%", 0},
      {"aa:bb:cc", 0},
      {"-1:00:00", 0},
      {"00:00:", 0},
      {"00:00:5.", 0},
      {"00:00:30:00", 0},
  };
  for (const auto& row : rows) {
    const auto duration = TamzoAdDuration::initFromString(Text(row.text));
    ASSERT_NE(duration, nullptr) << '"' << row.text << '"';
    EXPECT_EQ(duration->durationInSeconds(), row.value) << '"' << row.text << '"';
    EXPECT_EQ(duration->text(), Text(row.text)) << "the text is kept as it stands";
  }
}

}  // namespace
}  // namespace tamzo::testing
