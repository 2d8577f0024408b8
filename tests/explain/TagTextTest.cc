#include "explain/TagText.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Growth.h"

namespace tamzo::testing {
namespace {

using explain::TagText;

// The name, and each attribute as name@offset=value.
std::string read(const std::string& text, std::size_t at = 0) {
  const TagText tag = explain::readTag(text, at);
  std::string line(tag.name);
  for (const explain::AttributeText& attribute : tag.attributes) {
    line += ' ';
    line += attribute.name;
    line += '@' + std::to_string(attribute.nameAt) + '=';
    line += attribute.value;
    EXPECT_LE(attribute.end, text.size()) << text;
  }
  EXPECT_LE(tag.end, text.size()) << text;
  return line + " -" + std::to_string(tag.end);
}

TEST(TagTextTest, readsATagAsItIsWritten) {
  EXPECT_EQ(read("<a>b"), "a -3");
  EXPECT_EQ(read("<a/>b"), "a -4");
  EXPECT_EQ(read("x<a>", 1), "a -4");
  EXPECT_EQ(read("<a:b c='d' e = \"f>'\"\n\tg:h=''/>"), "a:b c@5=d e@11=f>' g:h@22= -30");
  EXPECT_EQ(read("<a b='&amp;&#1;'>"), "a b@3=&amp;&#1; -17");
}

TEST(TagTextTest, passesOverWhatIsNoAttribute) {
  EXPECT_EQ(read("<a b c='d'>"), "a c@5=d -11");
  EXPECT_EQ(read("<a b=c d='e'>"), "a d@7=e -13");
  EXPECT_EQ(read("<a = b='c'>"), "a b@5=c -11");
  EXPECT_EQ(read("<a b='c>"), "a -8");
  EXPECT_EQ(read("<a b="), "a -5");
  EXPECT_EQ(read("<a b"), "a -4");
  EXPECT_EQ(read("<a"), "a -2");
  EXPECT_EQ(read("<"), " -1");
  EXPECT_EQ(read("<a b='c'd='e'>"), "a b@3=c d@8=e -14");
}

TEST(TagTextTest, findsTheRoot) {
  EXPECT_EQ(
      explain::findRoot("\xEF\xBB\xBF<?xml?><!-- <a> --><!DOCTYPE a [<!ENTITY b '<c>'>]>\n<a>"),
      55U);
  EXPECT_EQ(explain::findRoot("<!-- <a>"), std::string::npos);
  EXPECT_EQ(explain::findRoot("a"), std::string::npos);
  EXPECT_EQ(explain::findRoot(""), std::string::npos);
}

TEST(TagTextTest, findsAnAttributeByItsName) {
  const std::string text = "<a B='1' b='2' b='3'>";
  const TagText tag = explain::readTag(text, 0);
  ASSERT_NE(explain::findAttribute(tag, "b"), nullptr);
  EXPECT_EQ(explain::findAttribute(tag, "b")->value, "2");
  EXPECT_EQ(explain::findAttribute(tag, "c"), nullptr);
}

TEST(TagTextTest, resolvesReferences) {
  const std::vector<std::pair<std::string, std::string>> values{
      {"", ""},
      {"a", "a"},
      {"&amp;&lt;&gt;&quot;&apos;", "&<>\"'"},
      {"a&#65;&#x42;&#x0063;", "aABc"},
      {"&#233;", "\xC3\xA9"},
      {"&#x20AC;", "\xE2\x82\xAC"},
      {"&#x1F600;", "\xF0\x9F\x98\x80"},
      {"&#x10fFfF;", "\xF4\x8F\xBF\xBF"},
      // What is none stays as it is.
      {"&nbsp;", "&nbsp;"},
      {"&", "&"},
      {"&&amp;", "&&"},
      {"a&b", "a&b"},
      {"&;", "&;"},
      {"&#0;", "&#0;"},
      {"&#xD800;", "&#xD800;"},
      {"&#x110000;", "&#x110000;"},
      {"&#99999999;", "&#99999999;"},
      {"&#1f;", "&#1f;"},
      {"&#xg;", "&#xg;"},
      {"&#00000000000000000065;", "&#00000000000000000065;"},
  };
  for (const auto& [written, meant] : values) {
    EXPECT_EQ(explain::decoded(written), meant) << written;
  }
}

TEST(TagTextTest, costsTimeLinearInTheText) {
  EXPECT_TRUE(growsLinearly(5000, [](std::size_t count) {
    std::string tag = "<a";
    std::string value;
    for (std::size_t i = 0; i < count; ++i) {
      tag += " b='c' d=\" e=";
      value += "&#;&amp";
    }
    return [tag, value] {
      explain::readTag(tag, 0);
      explain::decoded(value);
    };
  }));
}

}  // namespace
}  // namespace tamzo::testing
