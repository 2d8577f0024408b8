#include "xml/TagSize.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "tests/support/Documents.h"
#include "tests/support/Growth.h"

namespace tamzo::testing {
namespace {

constexpr int kMost = 800;

// Long enough for 800 of them to make a large tag.
std::string manyAttributes(int count) { return repeat(" name='a value'", count); }

TEST(TagSizeTest, ALargeTagMayHaveEightHundredAttributes) {
  for (const std::string open : {"<a", "<", "<x:a"}) {
    for (const std::string close : {">", "/>", "", " "}) {
      EXPECT_FALSE(hasOversizedTag(open + manyAttributes(kMost) + close)) << open << close;
      EXPECT_TRUE(hasOversizedTag(open + manyAttributes(kMost + 1) + close)) << open << close;
    }
  }
}

TEST(TagSizeTest, ItIsFoundWhereverItBegins) {
  for (std::size_t before = 0; before < 9000; before += 500) {
    const std::string front = "<r>" + std::string(before, 'x');
    EXPECT_TRUE(hasOversizedTag(front + "<a" + manyAttributes(kMost + 1) + "/></r>")) << before;
    EXPECT_FALSE(hasOversizedTag(front + "<a" + manyAttributes(kMost) + "/></r>")) << before;
    EXPECT_TRUE(hasOversizedTag("<r>" + repeat("<b/>", 2000) + front + "<a" +
                                manyAttributes(kMost + 1) + "/></r>"))
        << before;
  }
}

TEST(TagSizeTest, EqualsSignsInValuesAreNoAttributes) {
  const std::string pairs = repeat("key=value;", 2000);
  EXPECT_FALSE(hasOversizedTag("<a b='" + pairs + "'/>"));
  EXPECT_FALSE(hasOversizedTag("<a b=\"" + pairs + "\"/>"));
  EXPECT_FALSE(hasOversizedTag("<a b='>" + pairs + "'/>")) << "nor does a value end the tag";
  EXPECT_TRUE(hasOversizedTag("<a b='>'" + manyAttributes(kMost) + "/>"));
}

TEST(TagSizeTest, WhatIsNoTagHasNoAttributes) {
  const std::string large = "<a" + manyAttributes(2 * kMost) + "/>";
  const std::string pairs = manyAttributes(2 * kMost);
  EXPECT_FALSE(hasOversizedTag(pairs)) << "text";
  EXPECT_FALSE(hasOversizedTag("<r>" + pairs + "</r>"));
  EXPECT_FALSE(hasOversizedTag("<r><!--" + large + "--></r>"));
  EXPECT_FALSE(hasOversizedTag("<r><![CDATA[" + large + "]]></r>"));
  EXPECT_FALSE(hasOversizedTag("<r><?p " + large + "?></r>"));
  EXPECT_FALSE(hasOversizedTag("<!DOCTYPE r" + pairs + ">")) << "a declaration";
  EXPECT_FALSE(hasOversizedTag("<!DOCTYPE r><r>" + large + "</r>")) << "what follows one";
  // What such a place only seems to hold open does not hide what follows.
  EXPECT_TRUE(hasOversizedTag("<r><!-- - - > --><![CDATA[]]]]><?p ? ?>" + large + "</r>"));
  EXPECT_TRUE(hasOversizedTag("<r><![CDATA[<]]><!--<--><?p <?>" + large + "</r>"));
}

TEST(TagSizeTest, ASmallTagMayHaveMore) {
  EXPECT_FALSE(hasOversizedTag("<r><a" + repeat(" a=''", kMost + 1) + "/></r>"))
      << "5 KB cost little however many attributes they are";
}

TEST(TagSizeTest, ReadsATextOnce) {
  // Long enough for each to hold a whole block without "<", which is looked at more closely.
  const std::string signs(9000, '=');
  const std::string letters(9000, 'x');
  for (const std::string& piece : {"<" + signs, "<a" + manyAttributes(kMost) + ">" + signs,
                                   "<!--" + signs + "-->", signs, "<a>" + letters}) {
    EXPECT_TRUE(growsLinearly(40, [&piece](std::size_t size) {
      const std::string text = "<r>" + repeat(piece, static_cast<int>(size));
      return [text] { static_cast<void>(hasOversizedTag(text)); };
    })) << piece.substr(0, 10);
  }
}

}  // namespace
}  // namespace tamzo::testing
