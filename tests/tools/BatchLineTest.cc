// One line of "tamzo-vast batch".

#include "tools/BatchLine.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace tamzo::testing {
namespace {

using command::answerBatchLine;
using command::BatchAnswer;

// The id of the answer as it is written there.
std::string idOf(const BatchAnswer& answer) {
  const std::size_t end =
      answer.line.find(answer.problem.empty() ? ", \"record\": " : ", \"error\": ");
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
      {"not json", "null", "is not JSON"},
      {R"({"id":1,"vast":"")", "1", "is not JSON"},
      {R"({"id":{"a":[1]},"vast":})", R"({"a":[1]})", "is not JSON"},
      {R"({"id":[1,"vast":""})", "null", "is not JSON"},
      {R"({"id":tru,"vast":""})", "null", "is not JSON"},
      {R"({"vast":"" "id":1})", "null", "is not JSON"},
      {R"({"id":1,"vast":""} x)", "1", "is not JSON"},
      {R"({"id":1,"vast":""}{"id":2})", "1", "is not JSON"},
      {"[1]", "null", "is no JSON object"},
      {"7", "null", "is no JSON object"},
      {"1e999", "null", "is no JSON object"},
      {R"({"id":1})", "1", "has no text \"vast\""},
      {R"({"id":1,"vast":7})", "1", "has no text \"vast\""},
      {R"({"id":1,"x":)" + deep, "1", "is nested too deep"},
      {deep, "null", "is nested too deep"},
      {"{\"id\":1,\"vast\":\"\xFF\"}", "1", "is not UTF-8 text"},
      {"{\"id\":\"\xFF\",\"vast\":\"\"}", "null", "is not UTF-8 text"},
      {"{\"id\":[\"\xFF\"],\"vast\":\"\"}", "null", "is not UTF-8 text"},
      {"\xFF", "null", "is not UTF-8 text"},
      {R"({"id":1,"vast":"\ud83d"})", "1", "holds half a surrogate pair"},
      {R"({"id":"\ude00","vast":""})", "null", "holds half a surrogate pair"},
      {std::string("{\"id\":1,\"vast\":\"a\0b\"}", 21), "1", "holds a NUL character"},
      {std::string("{\"id\":1,\"vast\":\"\"}\0", 19), "1", "holds a NUL character"},
  };
  for (const auto& row : rows) {
    const BatchAnswer answer = answerBatchLine(row.line);
    EXPECT_EQ(answer.problem, row.problem) << row.line;
    EXPECT_EQ(idOf(answer), row.id) << row.line;
    EXPECT_EQ(answer.errorCode, 0) << row.line;
    EXPECT_EQ(nlohmann::json::parse(answer.line).at("error"), row.problem) << row.line;
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
