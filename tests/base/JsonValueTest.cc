// JSON values, decoded.

#include "tamzo/base/JsonValue.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <thread>
#include <type_traits>
#include <vector>

namespace tamzo::testing {
namespace {

using Kind = JsonValue::Kind;

std::string nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

// What the text reads as, written again; "nil" when it is malformed.
std::string again(const std::string& json) {
  const JsonValue value = JsonValue::parse(json);
  return value.isNil() ? "nil" : value.dump();
}

TEST(JsonValue, HasAKind) {
  const std::pair<const char*, Kind> rows[] = {
      {"null", Kind::null}, {"true", Kind::boolean}, {"false", Kind::boolean}, {"0", Kind::number},
      {"-1", Kind::number}, {"1.5", Kind::number},   {"\"\"", Kind::text},     {"[]", Kind::list},
      {"{}", Kind::map},    {" \n7\t", Kind::number}};
  for (const auto& [json, kind] : rows) {
    const JsonValue value = JsonValue::parse(json);
    EXPECT_FALSE(value.isNil()) << json;
    EXPECT_EQ(value.kind(), kind) << json;
  }
}

TEST(JsonValue, IsNilWhereThereIsNone) {
  for (const JsonValue& nil : {JsonValue(), JsonValue::parse(Text()), JsonValue::parse("nul"),
                               JsonValue::parse("[1]").at(1), JsonValue::parse("{}").find("a")}) {
    EXPECT_TRUE(nil.isNil());
    EXPECT_EQ(nil.kind(), Kind::null);
    EXPECT_FALSE(nil.asBool());
    EXPECT_EQ(nil.asNumber(), 0.0);
    EXPECT_EQ(nil.asInteger(), 0);
    EXPECT_TRUE(nil.asText().isNil());
    EXPECT_EQ(nil.size(), 0U);
    EXPECT_TRUE(nil.at(0).isNil());
    EXPECT_TRUE(nil.keyAt(0).isNil());
    EXPECT_TRUE(nil.find("").isNil());
    EXPECT_EQ(nil.dump(), "null");
    EXPECT_EQ(nil, JsonValue());
  }
}

TEST(JsonValue, GivesNothingForWhatItIsNot) {
  for (const char* json : {"null", "true", "7", "\"7\"", "[7]", "{\"7\":7}"}) {
    const JsonValue value = JsonValue::parse(json);
    EXPECT_EQ(value.asBool(), value.kind() == Kind::boolean) << json;
    EXPECT_EQ(value.asNumber(), value.kind() == Kind::number ? 7.0 : 0.0) << json;
    EXPECT_EQ(value.asInteger(), value.kind() == Kind::number ? 7 : 0) << json;
    EXPECT_EQ(value.asText().isNil(), value.kind() != Kind::text) << json;
    EXPECT_EQ(value.at(0).isNil(), value.size() == 0) << json;
    EXPECT_EQ(value.keyAt(0).isNil(), value.kind() != Kind::map) << json;
    EXPECT_EQ(value.find("7").isNil(), value.kind() != Kind::map) << json;
  }
}

TEST(JsonValue, NumbersAreExactWhere64BitsHoldThem) {
  constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
  const struct {
    const char* json;
    std::int64_t integer;
    double number;
    const char* written;
  } rows[] = {
      {"0", 0, 0.0, "0"},
      {"-0", 0, 0.0, "0"},
      {"9007199254740993", 9007199254740993, 9007199254740992.0, "9007199254740993"},
      {"9223372036854775807", kMax, 0x1p63, "9223372036854775807"},
      {"9223372036854775808", kMax, 0x1p63, "9223372036854775808"},
      {"18446744073709551615", kMax, 0x1p64, "18446744073709551615"},
      {"18446744073709551616", kMax, 0x1p64, "1.8446744073709552e+19"},
      {"-9223372036854775808", kMin, -0x1p63, "-9223372036854775808"},
      {"-9223372036854775809", kMin, -0x1p63, "-9.223372036854776e+18"},
      {"2.9", 2, 2.9, "2.9"},
      {"-2.9", -2, -2.9, "-2.9"},
      {"1e300", kMax, 1e300, "1e+300"},
      {"-1e300", kMin, -1e300, "-1e+300"},
      {"1e-999", 0, 0.0, "0.0"},
      {"0e999", 0, 0.0, "0.0"},
      {"1E+2", 100, 100.0, "100.0"},
      {"0.30000000000000004", 0, 0.1 + 0.2, "0.30000000000000004"},
      {"1000000000000000.5", 1000000000000000, 1000000000000000.5, "1.0000000000000005e+15"},
      {"100000000000000.0", 100000000000000, 1e14, "100000000000000.0"},
      {"1000000000000000.0", 1000000000000000, 1e15, "1e+15"},
      {"-1234567890123456.0", -1234567890123456, -1234567890123456.0, "-1.234567890123456e+15"},
      {"1e16", 10000000000000000, 1e16, "1e+16"},
      {"0.0001", 0, 0.0001, "0.0001"},
      {"0.00001", 0, 0.00001, "1e-05"},
      {"5e-324", 0, 5e-324, "5e-324"},
      {"1.7976931348623157e308", kMax, 1.7976931348623157e308, "1.7976931348623157e+308"},
  };
  for (const auto& row : rows) {
    const JsonValue value = JsonValue::parse(row.json);
    EXPECT_EQ(value.asInteger(), row.integer) << row.json;
    EXPECT_EQ(value.asNumber(), row.number) << row.json;
    EXPECT_EQ(value.dump(), row.written) << row.json;
  }
  EXPECT_TRUE(std::signbit(JsonValue::parse("-0.0").asNumber()));
  EXPECT_EQ(again("-0.0"), "-0.0");
}

TEST(JsonValue, ANumberMayBeAsLongAsItLikes) {
  EXPECT_EQ(JsonValue::parse("1" + std::string(308, '0')).asNumber(), 1e308);
  EXPECT_EQ(JsonValue::parse("1" + std::string(400, '0') + "e-400").asNumber(), 1.0);
  EXPECT_EQ(JsonValue::parse("0." + std::string(400, '0') + "1e401").asNumber(), 1.0);
  EXPECT_EQ(JsonValue::parse("1e-" + std::string(400, '9')).asNumber(), 0.0);
  EXPECT_EQ(JsonValue::parse("1e" + std::string(400, '0') + "1").asNumber(), 10.0);
  for (const std::string& tooLarge :
       {std::string("1e999"), std::string("-1e309"), "1" + std::string(309, '0'),
        "[1e" + std::string(400, '9') + "]", std::string("1.7976931348623159e308")}) {
    EXPECT_EQ(again(tooLarge), "nil") << tooLarge;
  }
}

TEST(JsonValue, TextsAreUnescaped) {
  const std::pair<std::string, std::string> rows[] = {
      {R"("")", ""},
      {R"("a\"\\\/\b\f\n\r\t")", "a\"\\/\b\f\n\r\t"},
      {R"("\u00e9\uD83D\ude00")", "\xC3\xA9\xF0\x9F\x98\x80"},
      {R"("\u0000x")", std::string("\0x", 2)},
      {"\"\xC3\xA9\x7F\xEF\xBF\xBF\"", "\xC3\xA9\x7F\xEF\xBF\xBF"},
      {"\"" + std::string(1000, 'a') + R"(\n)" + std::string(1000, 'b') + "\"",
       std::string(1000, 'a') + "\n" + std::string(1000, 'b')},
  };
  for (const auto& [json, text] : rows) {
    EXPECT_EQ(JsonValue::parse(json).asText().view(), text) << json;
    EXPECT_EQ(JsonValue::parse("{" + json + ":1}").keyAt(0).view(), text) << json;
  }
}

TEST(JsonValue, MalformedTextIsNil) {
  for (const std::string& json : std::initializer_list<std::string>{"",
                                                                    " ",
                                                                    "not json",
                                                                    "nul",
                                                                    "tru",
                                                                    "nulll",
                                                                    "[1,]",
                                                                    "{\"a\":1,}",
                                                                    "[,1]",
                                                                    "[1] 2",
                                                                    "{a:1}",
                                                                    "{\"a\"}",
                                                                    "{\"a\":}",
                                                                    "{1:2}",
                                                                    "['a']",
                                                                    "[",
                                                                    "]",
                                                                    "[1",
                                                                    "{",
                                                                    "[1}",
                                                                    "{]",
                                                                    "// c\n[]",
                                                                    "[]//",
                                                                    "/**/[]",
                                                                    "NaN",
                                                                    "Infinity",
                                                                    "-Infinity",
                                                                    "inf",
                                                                    "01",
                                                                    "-01",
                                                                    "00",
                                                                    "+1",
                                                                    ".5",
                                                                    "1.",
                                                                    "1.e5",
                                                                    "1e",
                                                                    "1e+",
                                                                    "1.5.5",
                                                                    "1e5e5",
                                                                    "-",
                                                                    "--1",
                                                                    "0x1F",
                                                                    "1_000",
                                                                    "\"a",
                                                                    "\"a\tb\"",
                                                                    "\"\x1F\"",
                                                                    "\"\n\"",
                                                                    R"("\x41")",
                                                                    R"("\u12")",
                                                                    R"("\u12g4")",
                                                                    R"("\ud83d")",
                                                                    R"("\ud83dx")",
                                                                    R"("\ud83d\n")",
                                                                    R"("\ud83d\ud83d")",
                                                                    R"("\uDC00x")",
                                                                    R"({"\uDC00":1})",
                                                                    "\"\xFF\"",
                                                                    "\"\xC3\"",
                                                                    "\"\xC0\x80\"",
                                                                    "\"\xED\xA0\x80\"",
                                                                    "\"\xF4\x90\x80\x80\"",
                                                                    "\xC2\xA0[]",
                                                                    "\v1",
                                                                    std::string("[1]\0", 4),
                                                                    std::string("\"a\0\"", 4),
                                                                    std::string("\0[1]", 4),
                                                                    "\xEF\xBB",
                                                                    "\xEF\xBB\xBF"}) {
    EXPECT_EQ(again(json), "nil") << json;
  }
}

TEST(JsonValue, AByteOrderMarkIsPassedOver) {
  EXPECT_EQ(again("\xEF\xBB\xBF [1]"), "[1]");
  EXPECT_EQ(again("\xEF\xBB\xBF\xEF\xBB\xBF[1]"), "nil");
}

TEST(JsonValue, NestingIsBounded) {
  EXPECT_EQ(again(nested(512)), nested(512));
  EXPECT_EQ(again(nested(513)), "nil");
  EXPECT_EQ(again("[" + nested(511) + "," + nested(511) + "]"),
            "[" + nested(511) + "," + nested(511) + "]");
  EXPECT_EQ(again(nested(1'000'000)), "nil");
  EXPECT_EQ(again(std::string(1'000'000, '[')), "nil");
  EXPECT_EQ(again("[\"" + std::string(600, '[') + "\"]"), "[\"" + std::string(600, '[') + "\"]");
}

TEST(JsonValue, EntriesStandInTheOrderOfTheDocument) {
  const JsonValue map = JsonValue::parse(R"({"z":1,"a":[true,null],"":{"m":"x"}})");
  ASSERT_EQ(map.size(), 3U);
  EXPECT_EQ(map.keyAt(0).view(), "z");
  EXPECT_EQ(map.keyAt(1).view(), "a");
  EXPECT_EQ(map.keyAt(2).view(), "");
  EXPECT_FALSE(map.keyAt(2).isNil());
  EXPECT_TRUE(map.keyAt(3).isNil());
  EXPECT_TRUE(map.at(3).isNil());
  EXPECT_EQ(map.at(0).asInteger(), 1);
  EXPECT_TRUE(map.find("a").at(0).asBool());
  EXPECT_FALSE(map.find("a").at(1).isNil()) << "null is a value";
  EXPECT_EQ(map.find("").find("m").asText().view(), "x");
  EXPECT_EQ(map.dump(), R"({"z":1,"a":[true,null],"":{"m":"x"}})");
}

TEST(JsonValue, OfSeveralMembersOfOneNameTheLastCounts) {
  EXPECT_EQ(again(R"({"a":1,"a":2})"), R"({"a":2})");
  EXPECT_EQ(again(R"({"a":1,"b":2,"\u0061":{"c":1,"c":2},"d":3})"), R"({"b":2,"a":{"c":2},"d":3})");
  EXPECT_EQ(again(R"([{"a":1,"a":2,"a":3,"b":4,"b":5}])"), R"([{"a":3,"b":5}])");
  EXPECT_EQ(JsonValue::parse(R"({"a":1,"b":2,"a":3})").find("a").asInteger(), 3);
  // In time that does not grow with the square: 300,000 members of two names and as many of one
  // each.
  std::string json = "{";
  for (int i = 0; i < 300'000; ++i) {
    json += i % 2 == 0 ? "\"a\":1," : "\"b\":2,";
    json += "\"" + std::to_string(i) + "\":0,";
  }
  const JsonValue many = JsonValue::parse(json + "\"a\":9}");
  EXPECT_EQ(many.size(), 300'002U);
  EXPECT_EQ(many.find("a").asInteger(), 9);
}

TEST(JsonValue, IsTheSameOnlyAsItself) {
  const JsonValue list = JsonValue::parse("[1,1]");
  const JsonValue copy = list;
  EXPECT_EQ(list, copy);
  EXPECT_EQ(list.at(0), copy.at(0));
  EXPECT_NE(list.at(0), list.at(1));
  EXPECT_NE(list, JsonValue::parse("[1,1]"));
  EXPECT_NE(JsonValue::parse("null"), JsonValue());
}

TEST(JsonValue, WhatIsReadKeepsItsDocument) {
  const auto entry = [] { return JsonValue::parse(R"([{"a long key":"a long text"}])").at(0); }();
  const Text key = JsonValue(entry).keyAt(0);
  const Text text = JsonValue(entry).at(0).asText();
  EXPECT_EQ(key.view(), "a long key");
  EXPECT_EQ(text.view(), "a long text");
  static_assert(std::is_nothrow_copy_constructible_v<JsonValue>);
  static_assert(std::is_nothrow_move_constructible_v<JsonValue>);
}

TEST(JsonValue, IsReadFromSeveralThreads) {
  const JsonValue value = JsonValue::parse(R"({"a":[1,2,{"b":"c"}]})");
  std::array<std::string, 4> results;
  std::vector<std::thread> threads;
  for (std::string& result : results) {
    threads.emplace_back([&result, value] {
      for (int i = 0; i < 100; ++i) {
        result = value.dump() + std::string(value.find("a").at(2).find("b").asText().view());
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const std::string& result : results) {
    EXPECT_EQ(result, R"({"a":[1,2,{"b":"c"}]}c)");
  }
}

TEST(JsonValue, AListOfMegabytesIsReadWhole) {
  std::string json = "[0";
  while (json.size() < 5'000'000) {
    json += "," + std::to_string(json.size());
  }
  json += "]";
  const JsonValue list = JsonValue::parse(json);
  EXPECT_GT(list.size(), 600'000U);
  EXPECT_EQ(list.dump(), json);
}

}  // namespace
}  // namespace tamzo::testing
