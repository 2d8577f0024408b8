// One line of "tamzo-vast batch".

#include "tools/BatchLine.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace tamzo::testing {
namespace {

using command::BatchAnswer;

BatchAnswer answerBatchLine(const std::string& line) { return command::answerBatchLine(line, 7); }

// The id of the answer as it is written there.
std::string idOf(const BatchAnswer& answer) {
  const std::size_t end =
      answer.line.find(answer.problem.empty() ? ", \"record\": " : ", \"line\": ");
  return answer.line.substr(7, end - 7);
}

TEST(BatchLine, ARecordComesUnderTheIdOfItsLine) {
  const BatchAnswer answer = answerBatchLine(R"({"id":7,"vast":"<VAST version='9'\/>"})");
  EXPECT_EQ(answer.problem, "");
  EXPECT_EQ(answer.errorCode, 102);
  const auto line = nlohmann::ordered_json::parse(answer.line);
  EXPECT_EQ(line.size(), 2U);
  EXPECT_EQ(line.at("id"), 7);
  EXPECT_EQ(line.at("record").at("vastResponseStr"), "<VAST version='9'/>");
}

TEST(BatchLine, AnIdComesBackAsItWasWritten) {
  for (const std::string& id : std::initializer_list<std::string>{
           "123456789012345678901234567890", "-0", "1.50", "1E5", "1e999", std::string(500, '7'),
           R"({"b":1,"a":[{"id":2},"}"],"b":3})", R"("\u00e4\"\\")", R"("a,}b")", "[ ]", "{ }",
           "[[],{}]", "null", "true", "false"}) {
    EXPECT_EQ(idOf(answerBatchLine(R"({"vast":"{\"id\":9","x":{"id":8}, "id" : )" + id + " }")),
              id);
    EXPECT_EQ(idOf(answerBatchLine(R"( { "id":)" + id + R"( , "vast" : 7 } )")), id);
  }
  EXPECT_EQ(idOf(answerBatchLine("{\"vast\":\"\",\"id\":\r[1,\n2]\t}")), "[1, 2]");
}

TEST(BatchLine, WhatHasNoIdHasNull) {
  for (const char* line : {R"({"vast":""})", R"({"a":"id","b":["id",{"id":1}],"vast":""})", "{}",
                           R"(["id",1])", R"("id")", R"([{"id":1,"vast":""}])"}) {
    EXPECT_EQ(idOf(answerBatchLine(line)), "null") << line;
  }
}

TEST(BatchLine, OfSeveralMembersOfOneNameTheLastCounts) {
  const BatchAnswer answer = answerBatchLine(
      R"({"id":1,"vast":"a","\u0069d":{"id":3},"vast":[],"vast":"<VAST version='9'/>","id":2})");
  EXPECT_EQ(answer.errorCode, 102);
  EXPECT_EQ(idOf(answer), "2");
  for (const char* other : {"7", "null", "[\"\"]", "{\"vast\":\"\"}", "{}"}) {
    const std::string line = std::string(R"({"id":1,"vast":"","vast":)") + other + "}";
    EXPECT_EQ(answerBatchLine(line).problem, "has no text \"vast\"") << line;
  }
}

TEST(BatchLine, WhatIsRefusedSaysWhyUnderItsId) {
  const std::string deep(600, '[');
  const struct {
    std::string line;
    const char* id;
    const char* problem;
  } rows[] = {
      {"not json", "null", "is not JSON: this is no value at byte 2"},
      {R"({"id":1,"vast":"")", "1", "is not JSON: a comma or \"}\" is missing at byte 18"},
      {R"({"id":{"a":[1]},"vast":})", R"({"a":[1]})", "is not JSON: this is no value at byte 24"},
      {R"({"id":[1,"vast":""})", "null", "is not JSON: a comma or \"]\" is missing at byte 16"},
      {R"({"id":tru,"vast":""})", "null", "is not JSON: this is no value at byte 10"},
      {R"({"vast":"" "id":1})", "null", "is not JSON: a comma or \"}\" is missing at byte 12"},
      {R"({"vast":"\x","id":1})", "1", "is not JSON: there is no such escape at byte 10"},
      {R"({"vast":<VAST>,"id":"a,}b"})", "\"a,}b\"", "is not JSON: this is no value at byte 9"},
      {R"({"vast":"\u12x4","id":1})", "1",
       "is not JSON: \"\\u\" is not followed by four hexadecimal digits at byte 10"},
      {"{\"vast\":\"a\tb\",\"id\":1}", "1",
       "is not JSON: a string holds a control character at byte 11"},
      {R"({"vast":"a)", "null", "is not JSON: a string does not end at byte 11"},
      {R"({"id" 1})", "null",
       "is not JSON: a colon is missing after the name of a member at byte 7"},
      {R"({id:1})", "null", "is not JSON: the name of a member is missing at byte 2"},
      {R"({"id":1,"vast":""} x)", "1",
       "is not JSON: something follows the end of the value at byte 20"},
      {R"({"id":1,"vast":""}{"id":2})", "1",
       "is not JSON: something follows the end of the value at byte 19"},
      {"[1]", "null", "is JSON, but no object"},
      {"7", "null", "is JSON, but no object"},
      {"1e999", "null", "is JSON, but no object"},
      {R"({"id":1})", "1", "has no text \"vast\""},
      {R"({"id":1,"vast":7})", "1", "has no text \"vast\""},
      {R"({"id":1,"x":)" + deep, "1", "cannot be held: brackets nest deeper than 512 at byte 524"},
      {R"({"x":)" + deep + std::string(600, ']') + R"(,"id":1})", "1",
       "cannot be held: brackets nest deeper than 512 at byte 517"},
      {deep, "null", "cannot be held: brackets nest deeper than 512 at byte 513"},
      {"{\"id\":1,\"vast\":\"\xFF\"}", "1", "is not UTF-8 text at byte 17"},
      {"{\"vast\":\"\xC3\xA4\xFF\",\"id\":1}", "1", "is not UTF-8 text at byte 12"},
      {"{\"id\":\"\xFF\",\"vast\":\"\"}", "null", "is not UTF-8 text at byte 8"},
      {"{\"id\":[\"\xFF\"],\"vast\":\"\"}", "null", "is not UTF-8 text at byte 9"},
      {"\xFF", "null", "is not UTF-8 text at byte 1"},
      {R"({"id":1,"vast":"\ud83d"})", "1",
       "cannot be held: half a surrogate pair is no character at byte 17"},
      {R"({"vast":"\ud83d","id":{"a":[1,"}"]}})", R"({"a":[1,"}"]})",
       "cannot be held: half a surrogate pair is no character at byte 10"},
      {R"({"vast":"\ude00","id":1})", "1",
       "cannot be held: a string holds what is no character at byte 9"},
      {R"({"id":"\ude00","vast":""})", "null",
       "cannot be held: a string holds what is no character at byte 7"},
      {std::string("{\"id\":1,\"vast\":\"a\0b\"}", 21), "1", "holds a NUL character at byte 18"},
      {std::string("{\"vast\":\"a\0b\",\"id\":1}", 21), "1", "holds a NUL character at byte 11"},
      {std::string("{\"id\":1,\"vast\":\"\"}\0", 19), "1", "holds a NUL character at byte 19"},
  };
  for (const auto& row : rows) {
    const BatchAnswer answer = answerBatchLine(row.line);
    EXPECT_EQ(answer.problem, row.problem) << row.line;
    EXPECT_EQ(idOf(answer), row.id) << row.line;
    EXPECT_EQ(answer.errorCode, 0) << row.line;
    const auto line = nlohmann::ordered_json::parse(answer.line);
    EXPECT_EQ(line.size(), 3U) << row.line;
    EXPECT_EQ(line.at("line"), 7) << row.line;
    EXPECT_EQ(line.at("error"), row.problem) << row.line;
  }
}

TEST(BatchLine, NumbersThatNoDoubleHoldsAreNoHindrance) {
  EXPECT_EQ(answerBatchLine(R"({"x":[1e999,-1E+400],"vast":""})").problem, "");
}

TEST(BatchLine, AByteOrderMarkBelongsToNeitherLineNorResponse) {
  const BatchAnswer answer =
      answerBatchLine("\xEF\xBB\xBF{\"vast\":\"\\ufeff<VAST version='9'/>\"}");
  EXPECT_EQ(answer.errorCode, 102);
}

TEST(BatchLine, ALineMayBeLong) {
  const std::string vast(20'000'000, ' ');
  EXPECT_EQ(answerBatchLine("{\"id\":1,\"x\":[" + vast + "],\"vast\":\"" + vast + "\"}").errorCode,
            101);
}

TEST(BatchLine, ATextBecomesAnId) {
  EXPECT_EQ(command::idOf("a\"b\n\xFF"), "\"a\\\"b\\n\xEF\xBF\xBD\"");
  EXPECT_EQ(command::refuse("7", "\"why\"").line, R"({"id": 7, "error": "\"why\""})");
}

}  // namespace
}  // namespace tamzo::testing
