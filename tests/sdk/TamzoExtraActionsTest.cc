// The extra actions of an ad, as the vendor's JSON gives them.

#include "tamzo/sdk/TamzoExtraActions.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

#include "tamzo/vast/RecordJson.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using ExtraActions = SdkTest;

// The actions as a record has them.
std::string written(const TamzoExtraActions& actions) {
  const auto ad = TamzoVastAd::initWithVast("");
  ad->setExtraActions(actions);
  const std::string json = recordAsJson(*ad);
  const std::string key = "\"extraActions\":";
  const std::size_t begin = json.find(key) + key.size();
  return json.substr(begin, json.find(",\"VideoPlacementType\":", begin) - begin);
}

std::string decoded(const std::string& json) { return written(TamzoExtraActions::fromJson(json)); }

std::string nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

TEST_F(ExtraActions, AreWhateverTheJsonSays) {
  const std::pair<std::string, std::string> rows[] = {
      {R"({"a":1,"a":2})", R"({"a":2})"},
      {R"(["\u00e9\ud83d\ude00\n"])", "[\"\xC3\xA9\xF0\x9F\x98\x80\\n\"]"},
      {" -1.5e2 ", "-150.0"},
      {"\n[ 1 , 2 ]\t", "[1,2]"}};
  for (const auto& [json, expected] : rows) {
    EXPECT_EQ(decoded(json), expected) << json;
  }
  for (const std::string& json :
       {std::string(R"([{"a":1}])"), std::string("[]"), std::string(R"({"b":[1,2],"a":3})"),
        std::string(R"("text")"), std::string("12"), std::string("true"), std::string("false"),
        std::string("null"), std::string("[null]"), std::string(R"(["\"[{"])"), nested(512)}) {
    EXPECT_EQ(decoded(json), json);
  }
}

TEST_F(ExtraActions, AreNilWhereTheJsonIsMalformedOrTooDeep) {
  for (const std::string& json :
       {std::string("not json"), std::string("[1,]"), std::string("[1"), std::string(""),
        std::string("[1e999]"), nested(513), std::string(100'000, '[')}) {
    const auto actions = TamzoExtraActions::fromJson(json);
    EXPECT_TRUE(actions.isNil()) << json;
    EXPECT_FALSE(actions.isList()) << json;
    EXPECT_TRUE(actions.value().isNil()) << json;
    EXPECT_EQ(written(actions), "null") << json;
  }
  EXPECT_TRUE(TamzoExtraActions().isNil());
  EXPECT_TRUE(TamzoExtraActions::fromJson({}).isNil());
}

TEST_F(ExtraActions, AListHasItsEntriesAndNoValue) {
  const auto actions = TamzoExtraActions::fromJson(R"([null,"x",{"n":1}])");
  ASSERT_TRUE(actions.isList());
  EXPECT_FALSE(actions.isNil());
  EXPECT_TRUE(actions.value().isNil());
  ASSERT_EQ(actions.list()->size(), 3U);
  EXPECT_FALSE(std::get<JsonValue>(actions.list()->at(0)).isNil());
  EXPECT_EQ(std::get<JsonValue>(actions.list()->at(1)).asText().view(), "x");
  EXPECT_EQ(std::get<JsonValue>(actions.list()->at(2)).find("n").asInteger(), 1);
  EXPECT_TRUE(TamzoExtraActions::makeEmptyList().isList());
}

TEST_F(ExtraActions, AnythingElseIsAValueAndNoList) {
  for (const char* json : {"null", "7", "{\"a\":[]}"}) {
    const auto actions = TamzoExtraActions::fromJson(json);
    EXPECT_FALSE(actions.isNil()) << json;
    EXPECT_FALSE(actions.isList()) << json;
    EXPECT_EQ(actions.value().dump(), json);
  }
}

TEST_F(ExtraActions, ANilValueInAListIsWrittenAsNull) {
  auto actions = TamzoExtraActions::makeEmptyList();
  actions.list()->emplace_back(JsonValue());
  actions.list()->emplace_back(DDXMLElement());
  EXPECT_EQ(written(actions), R"([null,{"icon":{"program":null,"xml":null}}])");
}

TEST_F(ExtraActions, AListOfMegabytesIsDecodedWhole) {
  std::string json = "[0";
  while (json.size() < 5'000'000) {
    json += "," + std::to_string(json.size());
  }
  json += "]";
  EXPECT_EQ(decoded(json), json);
}

TEST_F(ExtraActions, AreDecodedOnceByWhicheverThreadAsksFirst) {
  const auto actions = TamzoExtraActions::fromJson(R"([{"a":1}])");
  std::array<const void*, 4> lists{};
  std::vector<std::thread> threads;
  for (const void*& list : lists) {
    threads.emplace_back([&list, copy = actions] { list = copy.list().get(); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const void* list : lists) {
    EXPECT_EQ(list, actions.list().get());
  }
}

}  // namespace
}  // namespace tamzo::testing
