// Reading JSON from front to back.

#include "base/JsonReader.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace tamzo::testing {
namespace {

// Writes down what is read, each with what stands in the text for it.
class Notes : public JsonHandler {
 public:
  bool scalar(std::string_view written) override { return note("scalar", "", written); }
  bool string(std::string_view characters, std::string_view written) override {
    return note("string", characters, written);
  }
  bool key(std::string_view characters) override { return note("key", characters, ""); }
  bool begin(std::string_view written) override { return note("begin", "", written); }
  bool end(std::string_view written, std::size_t count) override {
    return note("end", std::to_string(count), written);
  }

  std::string text;
  int left = 1000;

 private:
  bool note(std::string_view what, std::string_view characters, std::string_view written) {
    for (const std::string_view part : {what, characters, written}) {
      text += part.empty() ? "" : std::string(part) + " ";
    }
    text.back() = '\n';
    return --left > 0;
  }
};

TEST(JsonReader, TellsWhatStandsInTheTextInItsOrder) {
  Notes notes;
  EXPECT_EQ(readJson("\t{ \"a\\u0041\" : [ -1.50E+2 ,\"\\n\", true ] ,\"b\":{}}\r\n", notes),
            JsonFault::none);
  EXPECT_EQ(notes.text,
            "begin {\nkey aA\nbegin [\nscalar -1.50E+2\nstring \n \"\\n\"\nscalar true\nend 3 ]\n"
            "key b\nbegin {\nend 0 }\nend 2 }\n");
}

TEST(JsonReader, NumbersAreShownAsTheyAreWritten) {
  for (const std::string& number :
       {std::string("0"), std::string("-0"), std::string("0e999"), std::string("1E400"),
        std::string(1000, '9'), std::string(400, '1') + "." + std::string(400, '2') + "e-3"}) {
    Notes notes;
    EXPECT_EQ(readJson(number, notes), JsonFault::none) << number;
    EXPECT_EQ(notes.text, "scalar " + number + "\n");
  }
}

TEST(JsonReader, EachNumberOfAListIsReadForItself) {
  Notes notes;
  EXPECT_EQ(readJson("[10,2.5 ,-3e1,0]", notes), JsonFault::none);
  EXPECT_EQ(notes.text, "begin [\nscalar 10\nscalar 2.5\nscalar -3e1\nscalar 0\nend 4 ]\n");
}

TEST(JsonReader, CharactersBeyondAsciiAreReadWhereverTheyStand) {
  // Two, three and four bytes, the later ones from 0x80 on.
  for (const std::string character : {"\xC2\x80", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
    for (std::size_t before = 0; before < 17; ++before) {
      const std::string text = std::string(before, 'a') + character + "behind it";
      Notes notes;
      EXPECT_EQ(readJson("\"" + text + "\"", notes), JsonFault::none);
      EXPECT_EQ(notes.text, "string " + text + " \"" + text + "\"\n");
    }
  }
}

TEST(JsonReader, OnlyWhatIsOpenCountsAsDepth) {
  std::string json = "[";
  for (int i = 0; i < 600; ++i) {
    json += "[{}],";
  }
  Notes notes;
  notes.left = 5000;
  EXPECT_EQ(readJson(json + "0]", notes), JsonFault::none);
}

TEST(JsonReader, SaysWhatIsWrong) {
  const std::pair<std::string, JsonFault> rows[] = {
      {"[1,]", JsonFault::malformed},
      {"1.5.5", JsonFault::malformed},
      {"[1.5.5]", JsonFault::malformed},
      {"-", JsonFault::malformed},
      {"", JsonFault::malformed},
      {"01", JsonFault::malformed},
      {"1.", JsonFault::malformed},
      {"1e", JsonFault::malformed},
      {"1e+", JsonFault::malformed},
      {"1e5e5", JsonFault::malformed},
      {"\xEF\xBB\xBE"
       "1",
       JsonFault::malformed},
      {std::string("1\0", 2), JsonFault::malformed},
      {"\"\xFF\"", JsonFault::notText},
      {R"("\ud83d")", JsonFault::notText},
      {R"("\ude00")", JsonFault::notText},
      {R"({"\ude00":1})", JsonFault::notText},
      {std::string(513, '['), JsonFault::tooDeep},
      {std::string(512, '['), JsonFault::malformed},
  };
  for (const auto& [text, fault] : rows) {
    Notes notes;
    EXPECT_EQ(readJson(text, notes), fault) << text;
  }
}

TEST(JsonReader, SaysWhereAndWhy) {
  const struct {
    std::string text;
    std::size_t offset;
    const char* cause;
  } rows[] = {
      {"\xEF\xBB\xBF[1,]", 6, "this is no value"},
      {"[1 2]", 3, "a comma or \"]\" is missing"},
      {R"(["a\x"])", 3, "there is no such escape"},
      {"[\"a\nb\"]", 3, "a string holds a control character"},
      {"[\"a\", \"b\xFF\"]", 6, "a string holds what is no character"},
      {std::string(600, '['), 512, "brackets nest deeper than 512"},
  };
  for (const auto& row : rows) {
    Notes notes;
    JsonProblem problem;
    EXPECT_NE(readJson(row.text, notes, &problem), JsonFault::none);
    EXPECT_EQ(problem.offset, row.offset) << row.text;
    EXPECT_EQ(problem.cause, row.cause) << row.text;
  }
}

TEST(JsonReader, ChecksWhatNobodyReads) {
  EXPECT_EQ(checkJson(R"({"a":[1,"b",null,{"c":true}]})"), JsonFault::none);
  EXPECT_EQ(checkJson("[1,]"), JsonFault::malformed);
  EXPECT_EQ(checkJson(std::string(600, '[')), JsonFault::tooDeep);
}

TEST(JsonReader, EndsWhereItsHandlerDoes) {
  Notes notes;
  notes.left = 2;
  EXPECT_EQ(readJson("[1,2,3", notes), JsonFault::stopped);
  EXPECT_EQ(notes.text, "begin [\nscalar 1\n");

  struct Thrower : Notes {
    bool key(std::string_view) override { throw std::runtime_error("enough"); }
  } thrower;
  EXPECT_THROW(readJson(R"({"a":1})", thrower), std::runtime_error);
}

}  // namespace
}  // namespace tamzo::testing
