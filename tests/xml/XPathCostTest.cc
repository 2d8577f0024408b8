#include "xml/XPathCost.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Documents.h"
#include "tests/support/Growth.h"

namespace tamzo::testing {
namespace {

TEST(XPathCostTest, StepsDownTheTreeAllCostTheSame) {
  for (const char* path : {"a",
                           "/a/b",
                           "//a",
                           ".//a",
                           "//a/b",
                           "//a[1]/b[last()]",
                           "*",
                           "//*",
                           "a/*/b",
                           "@a",
                           "//@a",
                           "//a/@b",
                           "//*[@a]",
                           ".",
                           "./a",
                           "a[@b='c']",
                           "a[@b = \"c\" and d]",
                           "//a[b or c]/d",
                           "a[position() > 1]",
                           "a[2 < position()]",
                           "a[count(b) = 2]",
                           "a[contains(., 'x')]",
                           "a[starts-with(@b, 'x') and not(c)]",
                           "a[concat(@b, 'x') = 'y']",
                           "/",
                           "child::a/self::a",
                           "attribute::b",
                           "a[.//b]",
                           "a[.='x']/b",
                           "n:a/n:b",
                           "//n:*[@n:c='1']",
                           "a[1][b][c/d]",
                           "(//a)[1]",
                           "(a/b)[last()]",
                           "a-b/c.d",
                           "a[b*2=4]",
                           "a[b div 2 = 4]",
                           "a[-1 = b]",
                           "and/or",
                           "div[mod]",
                           "count(//a)",
                           "1 + 1",
                           "'..//'",
                           "a[@b='//..|']",
                           " a / b ",
                           "a[b + 1 > 2]",
                           "\xC3\xA9/\xC3\xBC",
                           "a[normalize-space(.) = 'x']"}) {
    EXPECT_EQ(costOfSteps(path), XPathCost::even) << path;
  }
}

TEST(XPathCostTest, OthersMayCostAsMuchAsTheDocumentIsLarge) {
  for (const char* path : {"..",
                           "//a/..",
                           "a/../b",
                           "a//b",
                           "//a//b",
                           "*//b",
                           "a[b]//c",
                           "(a)//b",
                           "a//b[1]",
                           "a/.//b",
                           "a | b",
                           "preceding::a",
                           "//a/preceding-sibling::*",
                           "following::*",
                           "a/following-sibling::b",
                           "ancestor::*",
                           "ancestor-or-self::a",
                           "parent::a",
                           "descendant::a",
                           "descendant-or-self::node()",
                           "namespace::*",
                           "text()",
                           "//text()",
                           "node()",
                           "comment()",
                           "processing-instruction()",
                           "processing-instruction('x')",
                           "self::node()",
                           "a = b",
                           "a[@b = @c]",
                           "a[b < c]",
                           "a[b != c]",
                           "a[/b]",
                           "a[//b]",
                           "a[count(/b) > 1]",
                           "a[b[//c]]",
                           "id('x')",
                           "id(//a)",
                           "a[lang('x')]",
                           "sum(a)",
                           "unknown()",
                           "$a",
                           "a[.=..]",
                           "a[b=c]",
                           "a[(b)=(c)]",
                           "* * *//b",
                           "a b",
                           "a[string(/) = 'x']",
                           "a & b",
                           "'open",
                           "a[`]",
                           "child :: a // b",
                           "a [ / b ]",
                           "a\t//\nb",
                           "string(a)",
                           "a[number(b) > .5]/c"}) {
    EXPECT_EQ(costOfSteps(path), XPathCost::byNode) << path;
  }
}

TEST(XPathCostTest, SearchesForOtherTextsCostMost) {
  for (const char* path : {"a[contains(b, c)]", "contains(a, string(b))", "substring-after(a, b)",
                           "a[translate(b, c, 'x')]", "translate(a, 'b', 'c')", "starts-with(a, b)",
                           "concat(a, b)", "a[contains(b , c)]/.."}) {
    EXPECT_EQ(costOfSteps(path), XPathCost::bySquareOfText) << path;
  }
}

TEST(XPathCostTest, ReadsAnExpressionOnce) {
  for (const char* piece : {"a/", "[", "'", "a", " ", ".", "=", "a[b='c']/", "'x'"}) {
    EXPECT_TRUE(growsLinearly(2000, [piece](std::size_t size) {
      const std::string path = repeat(piece, static_cast<int>(size));
      return [path] { static_cast<void>(costOfSteps(path)); };
    })) << piece;
  }
}

}  // namespace
}  // namespace tamzo::testing
