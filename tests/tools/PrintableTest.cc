#include "tools/Printable.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <utility>

namespace tamzo::testing {
namespace {

using namespace command;

TEST(Printable, ControlCharactersAreEscapedEverywhere) {
  EXPECT_EQ(printable("a\x1b[2J\n\t\x7F\xC2\x9B\xC2\xA0\xE2\x80\xAE\xFF"),
            "a\\u001b[2J\\u000a\\u0009\\u007f\\u009b\xC2\xA0\xE2\x80\xAE\xFF");
}

TEST(Printable, ATerminalShowsWhatAPersonSees) {
  const std::pair<std::string, std::string> rows[] = {
      {"", ""},
      {"https://a.example/?q=\\u0041~", "https://a.example/?q=\\u0041~"},
      {"\xC3\xA4\xE6\xBC\xA2\xF0\x9F\x98\x80", "\xC3\xA4\xE6\xBC\xA2\xF0\x9F\x98\x80"},
      {"e\xCC\x81", "e\xCC\x81"},
      {std::string("\0\x01\x1b\r\n\t\x7F", 7), "\\u0000\\u0001\\u001b\\u000d\\u000a\\u0009\\u007f"},
      {"\xC2\x85\xC2\x9B", "\\u0085\\u009b"},
      {"\xE2\x80\xAE\xE2\x81\xA6\xD8\x9C\xE2\x80\x8E", "\\u202e\\u2066\\u061c\\u200e"},
      {"\xE2\x80\x8B\xE2\x80\x8D\xEF\xBB\xBF\xC2\xAD\xE2\x81\xA0",
       "\\u200b\\u200d\\ufeff\\u00ad\\u2060"},
      {"\xE2\x80\xA8\xE2\x80\xA9", "\\u2028\\u2029"},
      {"\xF3\xA0\x81\x81\xF3\xA0\x84\x80", "\\udb40\\udc41\\udb40\\udd00"},  // tag, selector
      {"\xEF\xB8\x8F\xCD\x8F\xE1\x85\x9F\xE3\x85\xA4\xE1\xA0\x8E\xE2\xA0\x80",
       "\\ufe0f\\u034f\\u115f\\u3164\\u180e\\u2800"},
      {"\xC2\xA0\xE3\x80\x80\xE2\x80\x83", "\\u00a0\\u3000\\u2003"},
      {"\xEE\x80\x80\xEF\xBF\xBF", "\\ue000\\uffff"},  // private, no character
      {"a\xFF\xC3(\xE2\x80", "a\\xff\\xc3(\\xe2\\x80"},
      {"\xED\xA0\x80\xC0\x9B", "\\xed\\xa0\\x80\\xc0\\x9b"},
  };
  for (const auto& [text, shown] : rows) {
    EXPECT_EQ(shownOnTerminal(text), shown);
  }
}

TEST(Printable, LinesStayLinesButCannotLookLikeOthers) {
  EXPECT_EQ(linesShownOnTerminal("a\n\tb\r\n\x1b\xE2\x80\xA8"), "a\n    b\\u000d\n\\u001b\\u2028");
  EXPECT_EQ(linesShownOnTerminal("a\n[LOG] b", "  "), "a\n  [LOG] b");
}

TEST(Printable, JsonStaysJsonOfTheSameValue) {
  const nlohmann::json value = {"\x7F\xC2\x85\xE2\x80\xAE\xF3\xA0\x81\x81\xEF\xBB\xBF\xC2\xA0",
                                "\xC3\xA4"};
  const std::string shown =
      jsonShownOnTerminal("[\n\t" + value[0].dump() + ",\r" + value[1].dump() + "]");
  EXPECT_EQ(shown, "[\n \"\\u007f\\u0085\\u202e\\udb40\\udc41\\ufeff\\u00a0\", \"\xC3\xA4\"]");
  EXPECT_EQ(nlohmann::json::parse(shown), value);
}

TEST(Printable, WideCharactersTakeTwoColumnsAndMarksNone) {
  EXPECT_EQ(columnsOf("abc"), 3U);
  EXPECT_EQ(columnsOf("\xE6\xBC\xA2\xF0\x9F\x98\x80"), 4U);
  EXPECT_EQ(columnsOf("e\xCC\x81"), 1U);
}

TEST(Printable, WhatIsTooLongIsCutInTheMiddle) {
  const std::pair<std::size_t, const char*> rows[] = {
      {10, "0123456789"}, {11, "0123456789"}, {9, "012...789"}, {8, "012...89"},
      {4, "0..."},        {3, "..."},         {1, "."},         {0, ""}};
  for (const auto& [columns, cut] : rows) {
    EXPECT_EQ(cutInTheMiddle("0123456789", columns), cut);
  }
  const std::string wide = "\xE6\xBC\xA2\xE6\xBC\xA3\xE6\xBC\xA4\xE6\xBC\xA5";
  EXPECT_EQ(cutInTheMiddle(wide, 7), "\xE6\xBC\xA2...\xE6\xBC\xA5");
  EXPECT_EQ(cutInTheMiddle(wide, 6), "\xE6\xBC\xA2...");
  EXPECT_EQ(cutInTheMiddle("01234e\xCC\x81", 5), "0...e\xCC\x81");
  const std::string marks = "a" + std::string(100'000, 'b') + "\xCC\x81";
  EXPECT_EQ(cutInTheMiddle(marks, 5), "a...b\xCC\x81");
}

}  // namespace
}  // namespace tamzo::testing
