#include "tamzo/sdk/TamzoExtraActions.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "tests/support/Documents.h"

namespace tamzo::testing {
namespace {

std::string nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

TEST(TamzoExtraActionsTest, NilIsNoEmptyList) {
  const TamzoExtraActions nil;
  EXPECT_TRUE(nil.isNil());
  EXPECT_FALSE(nil.isList());
  EXPECT_EQ(nil.list(), nullptr);
  EXPECT_EQ(nil.value(), nullptr);
  const TamzoExtraActions empty = TamzoExtraActions::makeEmptyList();
  EXPECT_FALSE(empty.isNil());
  ASSERT_TRUE(empty.isList());
  EXPECT_TRUE(empty.list()->empty());
  EXPECT_EQ(empty.value(), nullptr);
}

TEST(TamzoExtraActionsTest, AnArrayBecomesAListOfItsValues) {
  const auto actions = TamzoExtraActions::fromJson(R"([1, "two", {"three": [3]}, null, []])");
  ASSERT_TRUE(actions.isList());
  EXPECT_EQ(actions.value(), nullptr);
  const char* expected[] = {"1", "\"two\"", R"({"three":[3]})", "null", "[]"};
  ASSERT_EQ(actions.list()->size(), std::size(expected));
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_EQ(std::get<TamzoExtraActions::JsonValue>((*actions.list())[i])->dump(), expected[i]);
  }
}

TEST(TamzoExtraActionsTest, AnythingElseIsOneValue) {
  for (const char* json : {"{}", R"({"a":[1]})", "1", "-0.5", "\"\"", "true", "null"}) {
    const auto actions = TamzoExtraActions::fromJson(json);
    EXPECT_FALSE(actions.isNil()) << json;
    EXPECT_FALSE(actions.isList()) << json;
    EXPECT_EQ(actions.list(), nullptr) << json;
    ASSERT_NE(actions.value(), nullptr) << json;
    EXPECT_EQ(actions.value()->dump(), json);
  }
}

TEST(TamzoExtraActionsTest, WhatIsNoJsonIsNil) {
  for (const char* text : {"", " ", "x", "[", "[1", "[1,]", "{\"a\"}", "'a'", "[1] x", "nul", "01",
                           "[\"\xE4\"]", "[\"\xED\xA0\x80\"]", "// c\n1"}) {
    const auto actions = TamzoExtraActions::fromJson(text);
    EXPECT_TRUE(actions.isNil()) << text;
    EXPECT_FALSE(actions.isList()) << text;
  }
  EXPECT_TRUE(TamzoExtraActions::fromJson(Text()).isNil());
}

TEST(TamzoExtraActionsTest, NestingIsBounded) {
  EXPECT_TRUE(TamzoExtraActions::fromJson(nested(512)).isList());
  EXPECT_TRUE(TamzoExtraActions::fromJson(nested(513)).isNil());
  EXPECT_TRUE(TamzoExtraActions::fromJson(nested(500'000)).isNil());
  EXPECT_TRUE(TamzoExtraActions::fromJson("\"" + std::string(600, '[') + "\"").value() != nullptr)
      << "brackets in a string nest nothing";
}

TEST(TamzoExtraActionsTest, LengthIsBounded) {
  constexpr std::size_t kMost = std::size_t{1} << 20U;
  const std::string fits = "\"" + std::string(kMost - 2, 'x') + "\"";
  EXPECT_FALSE(TamzoExtraActions::fromJson(fits).isNil());
  EXPECT_TRUE(TamzoExtraActions::fromJson(fits + " ").isNil());
}

TEST(TamzoExtraActionsTest, CopiesSeeOneList) {
  const auto actions = TamzoExtraActions::fromJson("[1]");
  const TamzoExtraActions copy = actions;
  const DDXMLElement icon = root("<Icon/>");
  actions.list()->emplace_back(icon);
  ASSERT_EQ(copy.list()->size(), 2U);
  EXPECT_EQ(std::get<DDXMLElement>(copy.list()->back()), icon);
  EXPECT_EQ(TamzoExtraActions::fromJson("[1]").list()->size(), 1U);
}

TEST(TamzoExtraActionsTest, AValueOutlivesItsActions) {
  TamzoExtraActions::JsonValue value;
  List<TamzoExtraActions::Entry> list;
  {
    value = TamzoExtraActions::fromJson(R"({"a": "a text that takes memory of its own"})").value();
    list = TamzoExtraActions::fromJson(R"([["another text with memory of its own"]])").list();
  }
  EXPECT_EQ(value->at("a"), "a text that takes memory of its own");
  EXPECT_EQ(std::get<TamzoExtraActions::JsonValue>(list->at(0))->dump(),
            R"(["another text with memory of its own"])");
}

TEST(TamzoExtraActionsTest, MayBeReadFirstBySeveralThreadsAtOnce) {
  for (int round = 0; round < 50; ++round) {
    const auto actions = TamzoExtraActions::fromJson("[1,2,3]");
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back(
          [&actions, &wrong] { wrong += actions.isList() && actions.list()->size() == 3 ? 0 : 1; });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    EXPECT_EQ(wrong, 0);
  }
}

}  // namespace
}  // namespace tamzo::testing
