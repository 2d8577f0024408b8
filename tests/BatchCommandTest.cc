// "tamzo-vast batch": many responses, one line of JSON for each.

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "tests/support/CommandFixture.h"

namespace tamzo::testing {
namespace {

using BatchCommandTest = CommandTest;

TEST_F(BatchCommandTest, ABatchAnswersEveryLineInItsPlace) {
  const std::string input =
      "\xEF\xBB\xBF" + requestLine(1, ad("a")) + "\n \t\r\n" + "not json\n" + "[1]\n" +
      R"({"id":{"k":[1.5,null]}})" + "\n" + R"({"id":"x","vast":7})" + "\n" +
      "{\"id\":1,\"vast\":\"\xFF\"}\n" + std::string(100'000, '[') + "\n" +
      requestLine(nullptr, "<VAST version='9'/>") + "{\"vast\":\"\\ufeff" + ad("b") + "\"}";
  const Result result = run({"batch", "-j", "3"}, input);
  EXPECT_EQ(result.status, 2);
  const auto lines = jsonLines(result.out);
  ASSERT_EQ(lines.size(), 9U) << result.out;
  const char* ids[] = {"1",    "null", "null", R"({"k":[1.5,null]})", R"("x")", "1",
                       "null", "null", "null"};
  for (std::size_t i = 0; i < lines.size(); ++i) {
    ASSERT_TRUE(lines[i].is_object()) << i;
    EXPECT_EQ(lines[i].size(), 2U) << i;
    EXPECT_EQ(lines[i].begin().key(), "id") << i;
    EXPECT_EQ(lines[i].at("id").dump(), ids[i]) << i;
    const bool isAnswered = i == 0 || i >= 7;
    EXPECT_EQ(lines[i].contains("record"), isAnswered) << i;
    EXPECT_TRUE(isAnswered || lines[i].at("error").is_string()) << i;
  }
  EXPECT_EQ(lines[0].at("record").size(), 72U);
  EXPECT_EQ(lines[7].at("record").at("errorCode"), 102);
  EXPECT_EQ(lines[8].at("record").at("adID"), "b");
  EXPECT_TRUE(std::regex_search(result.err, std::regex(R"((^|\n) *2 +0 )"))) << result.err;
  EXPECT_TRUE(std::regex_search(result.err, std::regex(R"((^|\n) *1 +102 )"))) << result.err;
  EXPECT_TRUE(std::regex_search(result.err, std::regex(R"((^|\n) *6 +- )"))) << result.err;
}

TEST_F(BatchCommandTest, ABatchKeepsTheOrderOfManyLines) {
  std::string input;
  for (int i = 0; i < 2000; ++i) {
    input += requestLine(
        i, i % 7 == 0
               ? "<VAST/>"
               : ad(std::to_string(i), std::string(static_cast<std::size_t>(i * 37 % 5000), ' ')));
  }
  const Result one = run({"batch", "-j", "1"}, input);
  EXPECT_EQ(one.status, 1);
  const auto lines = jsonLines(one.out);
  ASSERT_EQ(lines.size(), 2000U);
  for (int i = 0; i < 2000; ++i) {
    ASSERT_EQ(lines[static_cast<std::size_t>(i)].at("id"), i);
  }
  for (const Arguments& arguments : {Arguments{"batch"}, {"batch", "-j", "8"}}) {
    const Result many = run(arguments, input);
    EXPECT_EQ(many.out, one.out);
    EXPECT_EQ(many.err, one.err);
  }
}

TEST_F(BatchCommandTest, ABatchTakesFilesAndFolders) {
  fs::create_directories(path("in/folder.xml"));
  for (const char* name : {"in/b.xml", "in/a.xml", "in/c.txt", "in/folder.xml/d.xml", "z.txt"}) {
    file(name, ad(name));
  }
  const Result result =
      run({"batch", path("z.txt"), path("in"), path("none.xml"), path("in/b.xml")});
  EXPECT_EQ(result.status, 2);
  const auto lines = jsonLines(result.out);
  const char* names[] = {"z.txt", "in/a.xml", "in/b.xml", "none.xml", "in/b.xml"};
  ASSERT_EQ(lines.size(), std::size(names)) << result.out;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].at("id"), path(names[i]));
    EXPECT_EQ(lines[i].contains("error"), i == 3) << names[i];
  }
  EXPECT_EQ(lines[1].at("record").at("adID"), "in/a.xml");
  EXPECT_NE(result.err.find("none.xml"), std::string::npos);
}

TEST_F(BatchCommandTest, APathIsTakenAsItIsWritten) {
  fs::create_directories(path("[in]"));
  fs::create_directories(path("none"));
  fs::create_symlink(path("gone"), path("[in]/a.xml"));
  file("[in]/b.xml", ad("b"));
  file("[c,d]", ad("c"));
  const fs::path before = fs::current_path();
  fs::current_path(folder_);
  const Result result = run({"batch", "none", "[in]", "-j", "2", "[c,d]", "[]", ""});
  const Result nothing = run({"batch", "none"});
  fs::current_path(before);

  EXPECT_EQ(result.status, 2);
  const auto lines = jsonLines(result.out);
  const std::pair<const char*, bool> expected[] = {
      {"[in]/a.xml", false}, {"[in]/b.xml", true}, {"[c,d]", true}, {"[]", false}, {"", false}};
  ASSERT_EQ(lines.size(), std::size(expected)) << result.out;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].at("id"), expected[i].first);
    EXPECT_EQ(lines[i].contains("record"), expected[i].second) << expected[i].first;
  }
  EXPECT_EQ(nothing.status, 0);
  EXPECT_EQ(nothing.out, "") << "a folder without responses";
}

TEST_F(BatchCommandTest, ABatchTakesTheOptionsOfParse) {
  const std::string response = file("a.xml", ad("a", "<Category>IAB26</Category>"));
  const Result result = run({"batch", "--blocked-categories", "IAB26", "-o", path("out"), "--debug",
                             "--timeout", "1", "--max-body", "9", response});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(jsonLines(contentOf(path("out"))).at(0).at("record").at("errorCode"), 205);
  EXPECT_NE(result.err.find("[TAMZO-LOG][v8.0.0 p0] Vast Ad Category is blocked\n"),
            std::string::npos);
  const Result nothing = run({"batch"}, "\n\n");
  EXPECT_EQ(nothing.status, 0);
  EXPECT_EQ(nothing.out, "");
}

TEST_F(BatchCommandTest, AnUnreadableLineKeepsItsId) {
  const std::string input =
      std::string(R"({"id":"a","vast":"b"})") + '\0' + "\n" + R"({"id":1e999,"vast":"})" + "\n";
  const Result result = run({"batch"}, input);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out,
            "{\"id\": \"a\", \"error\": \"holds a NUL character\"}\n"
            "{\"id\": 1e999, \"error\": \"is not JSON\"}\n");
  EXPECT_NE(result.err.find("line 2: is not JSON"), std::string::npos) << result.err;
}

}  // namespace
}  // namespace tamzo::testing
