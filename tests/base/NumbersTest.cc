#include "base/Numbers.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <limits>
#include <locale>
#include <string>
#include <string_view>
#include <vector>

namespace tamzo::testing {
namespace {

constexpr std::int32_t kIntMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kIntMin = std::numeric_limits<std::int32_t>::min();

template <typename Value>
struct NumberRow {
  std::string_view text;
  Value value;
};

TEST(IntegerValue, ReadsTheNumberAtTheFront) {
  const std::vector<NumberRow<std::int32_t>> rows{
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
  const std::vector<NumberRow<bool>> rows{
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
  const std::vector<NumberRow<double>> rows{
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

TEST(DoubleValue, WhatIsNoNumberHasNoSign) {
  for (const std::string_view text :
       {std::string_view("-"), std::string_view("-x"), std::string_view("-."),
        std::string_view("-.x"), std::string_view("-.5").substr(0, 2)}) {
    EXPECT_EQ(doubleValue(text), 0.0) << text;
    EXPECT_FALSE(std::signbit(doubleValue(text))) << text;
  }
  EXPECT_TRUE(std::signbit(doubleValue("-0"))) << "a number has one";
}

TEST(DoubleValue, IsInfiniteForANumberTooLargeAndNoughtForOneTooSmall) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  const std::string nines(400, '9');
  const std::string noughts(400, '0');
  const std::vector<NumberRow<double>> rows{
      {"1e999", kInfinite},
      {"-1e999", -kInfinite},
      {"1e400px", kInfinite},
      {"2e308e-999", kInfinite},
      {"0.00001E+400", kInfinite},
      {"1e99999999999999999999", kInfinite},
      {"1.7976931348623157e308", std::numeric_limits<double>::max()},
      {"5e-324", std::numeric_limits<double>::denorm_min()},
      {"1e-99999999999999999999", 0.0},
      {"0001000e-400", 0.0},
      {"1e-999", 0.0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(doubleValue(row.text), row.value) << '"' << row.text << '"';
  }
  EXPECT_EQ(doubleValue(nines), kInfinite);
  EXPECT_EQ(doubleValue(nines + ".5e1 px"), kInfinite);
  EXPECT_EQ(doubleValue(nines + "e-800"), 0.0);
  EXPECT_EQ(doubleValue("0." + noughts + "1"), 0.0);
  EXPECT_TRUE(std::signbit(doubleValue("-1e-999")));
}

TEST(FloatValue, IsRoundedOnceToSinglePrecision) {
  EXPECT_EQ(floatValue("0.1"), 0.1F);
  EXPECT_EQ(floatValue(" -1.5e2;"), -150.0F);
  EXPECT_EQ(floatValue(""), 0.0F);
  EXPECT_EQ(floatValue("nan"), 0.0F);
  EXPECT_EQ(floatValue("1e39"), std::numeric_limits<float>::infinity());
  EXPECT_EQ(floatValue("1e-50"), 0.0F);
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

}  // namespace
}  // namespace tamzo::testing
