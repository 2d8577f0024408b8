// Strings and numbers as JSON.

#include "base/JsonText.h"

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>

namespace tamzo::testing {
namespace {

std::string stringOf(std::string_view text) {
  std::string json;
  appendJsonString(json, text);
  return json;
}

template <typename Number>
std::string written(Number number) {
  std::string json;
  appendJsonNumber(json, number);
  return json;
}

TEST(JsonText, EveryByteIsWrittenWhereverItStands) {
  using nlohmann::json;
  for (int c = 0; c < 256; ++c) {
    for (std::size_t before = 0; before < 20; ++before) {
      for (const std::size_t after : {std::size_t{0}, std::size_t{1}, std::size_t{9}}) {
        const std::string text =
            std::string(before, 'a') + static_cast<char>(c) + std::string(after, '~');
        EXPECT_EQ(stringOf(text), json(text).dump(-1, ' ', false, json::error_handler_t::replace))
            << c << " behind " << before;
      }
    }
  }
}

TEST(JsonText, WhatStandsInAStringAsItIsRunsToTheFirstByteThatDoesNot) {
  for (int c = 0; c < 256; ++c) {
    const bool isPlain = c >= 0x20 && c != '"' && c != '\\';
    for (std::size_t before = 0; before < 20; ++before) {
      const std::string text = std::string(before, 'a') + static_cast<char>(c) + "behind it";
      EXPECT_EQ(plainJsonBytes(text.data(), text.data() + text.size()),
                isPlain ? text.size() : before)
          << c << " behind " << before;
    }
  }
}

TEST(JsonText, ControlCharactersAreEscapedInLowerCase) {
  EXPECT_EQ(stringOf(std::string_view("\0\x1F\x0B\"\\/\b\f\n\r\t\x7F", 12)),
            "\"\\u0000\\u001f\\u000b\\\"\\\\/\\b\\f\\n\\r\\t\x7F\"");
}

TEST(JsonText, WhatIsNoUtf8BecomesOneReplacementForEachBrokenCharacter) {
  const std::string kBad = "\xEF\xBF\xBD";
  const std::pair<std::string, std::string> rows[] = {
      {"\xC3\xA9\xE2\x80\xA8\xF0\x9F\x98\x80", "\xC3\xA9\xE2\x80\xA8\xF0\x9F\x98\x80"},
      {"\xFF", kBad},
      {"\xC3", kBad},
      {"\xE2\x80", kBad},
      {"\xF0\x9F\x98", kBad},
      {"\xE2\x80x", kBad + "x"},
      {"\xF0\x9F\x98\xC3\xA9", kBad + "\xC3\xA9"},
      {"\xC0\x80", kBad + kBad},
      {"\xE0\x80\x80", kBad + kBad + kBad},
      {"\xED\xA0\x80", kBad + kBad + kBad},
      {"\xF4\x90\x80\x80", kBad + kBad + kBad + kBad},
      {"\x80\x80", kBad + kBad},
  };
  for (const auto& [text, json] : rows) {
    EXPECT_EQ(stringOf(text), "\"" + json + "\"");
    EXPECT_EQ(stringOf("12345678" + text + "\n"), "\"12345678" + json + "\\n\"");
  }
}

TEST(JsonText, NumbersAreTheShortestThatReadBack) {
  EXPECT_EQ(written(0.1), "0.1");
  EXPECT_EQ(written(0.1F), "0.1");
  EXPECT_EQ(written(5000.0), "5000");
  EXPECT_EQ(written(5e-324), "5e-324");
  // Grisu2, which many JSON libraries write numbers with, gives a digit too many for these.
  EXPECT_EQ(written(6.4041709), "6.4041709");
  EXPECT_EQ(written(3.54484e21), "3.54484e+21");
  EXPECT_EQ(written(-1.5), "-1.5");
  EXPECT_EQ(written(0.0), "0");
  EXPECT_EQ(written(-0.0), "-0.0");
  EXPECT_EQ(written(-0.0F), "-0.0");
  EXPECT_EQ(written(std::numeric_limits<double>::infinity()), "\"inf\"");
  EXPECT_EQ(written(-std::numeric_limits<float>::infinity()), "\"-inf\"");
  EXPECT_EQ(written(std::numeric_limits<double>::quiet_NaN()), "\"nan\"");
  EXPECT_EQ(written(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(written(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

TEST(JsonText, NumbersAreWrittenOutFromTenThousandthsToSixteenDigits) {
  EXPECT_EQ(written(0.0001), "0.0001");
  EXPECT_EQ(written(0.00012345), "0.00012345");
  EXPECT_EQ(written(0.00001), "1e-05");
  EXPECT_EQ(written(1234567890123456.0), "1234567890123456");
  EXPECT_EQ(written(1e15), "1000000000000000");
  EXPECT_EQ(written(1.5e16), "1.5e+16");
  EXPECT_EQ(written(-12345.678), "-12345.678");
  // No digit that single precision does not have: this one is 123456792.
  EXPECT_EQ(written(123456789.0F), "123456790");
}

TEST(JsonText, FractionsAreNeverTakenForIntegers) {
  const std::pair<double, const char*> rows[] = {{0.0, "0.0"},
                                                 {-0.0, "-0.0"},
                                                 {150.0, "150.0"},
                                                 {-1.5, "-1.5"},
                                                 {1e14, "100000000000000.0"},
                                                 {1e15, "1e+15"},
                                                 {-1e15, "-1e+15"},
                                                 {1e16, "1e+16"},
                                                 {1500000000000000.0, "1.5e+15"},
                                                 {9007199254740991.0, "9.007199254740991e+15"},
                                                 {0.0001, "0.0001"},
                                                 {0.00001, "1e-05"}};
  for (const auto& [number, json] : rows) {
    std::string text;
    appendJsonFraction(text, number);
    EXPECT_EQ(text, json);
    EXPECT_EQ(nlohmann::json(number).dump(), json);
  }
}

}  // namespace
}  // namespace tamzo::testing
