#include "xml/Markup.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace tamzo::testing {
namespace {

TEST(PastFirst, IsBehindTheEndOrAtTheEndOfTheText) {
  EXPECT_EQ(pastFirst("a-->b-->", "-->", 0), 4U);
  EXPECT_EQ(pastFirst("a-->b-->", "-->", 1), 4U);
  EXPECT_EQ(pastFirst("a-->b-->", "-->", 2), 8U);
  EXPECT_EQ(pastFirst("a--", "-->", 0), 3U);
  EXPECT_EQ(pastFirst("", "-->", 0), 0U);
  EXPECT_EQ(pastFirst("-->", "-->", 3), 3U);
}

TEST(PastTag, VisitsWhatStandsOutsideQuotes) {
  const struct {
    std::string_view text;
    std::size_t end;
    std::string_view visited;
  } rows[] = {
      {"<a>b", 3, "<a"},
      {"<a b='1'>c", 9, "<a b="},
      {"<a b='>'>c", 9, "<a b="},
      {"<a b=\"'>\" c='\">'>d", 17, "<a b= c="},
      {"<a b=''>", 8, "<a b="},
      {"<a", 2, "<a"},
      {"<a b='", 6, "<a b="},
      {"<a b='x", 7, "<a b="},
      {"<a b=\"'", 7, "<a b="},
      {">", 1, ""},
      {"", 0, ""},
  };
  for (const auto& row : rows) {
    std::string visited;
    EXPECT_EQ(pastTag(row.text, 0, [&](char c) { visited += c; }), row.end) << row.text;
    EXPECT_EQ(visited, row.visited) << row.text;
  }
  EXPECT_EQ(pastTag("x<a>", 1, [](char) {}), 4U);
}

TEST(PastRemark, IsBehindACommentOrAnInstruction) {
  EXPECT_EQ(pastRemark("<!-- > -->x", 0), 10U);
  EXPECT_EQ(pastRemark("<!-->x-->", 0), 9U) << "the dashes that open it do not close it";
  EXPECT_EQ(pastRemark("<!---->", 0), 7U);
  EXPECT_EQ(pastRemark("<?p > ?>x", 0), 8U);
  EXPECT_EQ(pastRemark("<?>x?>", 0), 6U);
  EXPECT_EQ(pastRemark("x<?p?>", 1), 6U);
  EXPECT_EQ(pastRemark("<!-- x", 0), 6U);
  EXPECT_EQ(pastRemark("<?p", 0), 3U);
  for (const std::string_view none : {"", "<", "<!", "<!-", "<a>", "<!ELEMENT>", "<![CDATA[]]>"}) {
    EXPECT_EQ(pastRemark(none, 0), 0U) << none;
  }
}

TEST(PastPreamble, IsWhereTheFirstTagMayStand) {
  for (const std::string_view preamble :
       {"", " \t\r\n", "\xEF\xBB\xBF", "\xEF\xBB\xBF\n", "\xC2\xA0", "<!-- <a> -->", "<?a b?>",
        "\xEF\xBB\xBF<?xml version='1.0'?>\n<!-- <a> --> <?b?>"}) {
    for (const std::string_view first : {"<a>", "</a>", "<!DOCTYPE a>", "x", "&lt;a>", ""}) {
      const std::string text = std::string(preamble).append(first);
      EXPECT_EQ(pastPreamble(text), preamble.size()) << text;
    }
  }
  EXPECT_EQ(pastPreamble("<!-- a"), 6U);
}

TEST(EndsTagName, IsTrueWhereNoMoreOfANameFollows) {
  for (const std::string_view text : {"<a", "<a b", "<a\tb", "<a\r\nb", "<a\nb", "<a/>", "<a>"}) {
    EXPECT_TRUE(endsTagName(text, 2)) << text;
  }
  for (const std::string_view text : {"<ab", "<a:b", "<a-", "<a=", "<a\xC2\xA0"}) {
    EXPECT_FALSE(endsTagName(text, 2)) << text;
  }
}

}  // namespace
}  // namespace tamzo::testing
