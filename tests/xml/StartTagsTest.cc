#include "xml/StartTags.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tamzo::testing {
namespace {

using Kind = MarkupPiece::Kind;

std::vector<std::size_t> startTagsOf(const std::string& text, const XPath& path) {
  const auto document = DDXMLDocument::initWithXMLString(Text(text), 0);
  std::vector<DDXMLElement> elements;
  for (const DDXMLElement& element : document->nodesForXPath(path)) {
    elements.push_back(element);
  }
  return findStartTags(text, *document, elements);
}

TEST(StartTagsTest, PiecesOfATextAreToldApart) {
  struct Row {
    const char* text;
    Kind kind;
    std::size_t end;
  };
  for (const Row& row : {
           Row{"text<a>", Kind::text, 4},
           Row{"<a b='>'>c", Kind::startTag, 9},
           Row{"</a>c", Kind::endTag, 4},
           Row{"<!-- <a> -->c", Kind::comment, 12},
           Row{"<?p <a> ?>c", Kind::instruction, 10},
           Row{"<![CDATA[<a>]]>c", Kind::cdata, 15},
           Row{"<!DOCTYPE a [<!ENTITY e '<b>'>]>c", Kind::documentType, 32},
           Row{"<!-- no end", Kind::comment, 11},
       }) {
    const MarkupPiece piece = markupPieceAt(row.text, 0);
    EXPECT_EQ(piece.kind, row.kind) << row.text;
    EXPECT_EQ(piece.begin, 0U) << row.text;
    EXPECT_EQ(piece.end, row.end) << row.text;
  }
}

TEST(StartTagsTest, ElementsAreFoundBehindWhatLooksLikeThem) {
  const std::string text =
      "<r><!--<e/>--><![CDATA[<e/>]]><?p <e/>?><e a='<e/>'/> <f><e b=\">\"/></f></r>";
  const std::string read =
      "<r><!--<e/>--><![CDATA[<e/>]]><?p <e/>?><e a='&lt;e/>'/> <f><e b=\">\"/></f></r>";
  ASSERT_EQ(DDXMLDocument::initWithXMLString(Text(text), 0), nullptr);
  EXPECT_EQ(startTagsOf(read, "//e"),
            (std::vector<std::size_t>{read.find("<e a="), read.find("<e b=")}));
}

TEST(StartTagsTest, WhatIsNotInTheTextHasNoPlace) {
  const std::string text = "<!DOCTYPE r [<!ENTITY e '<e/>'>]><r>&e;<e c=''/></r>";
  const auto document = DDXMLDocument::initWithXMLString(Text(text), 0);
  const auto other = DDXMLDocument::initWithXMLString("<r/>", 0);
  const std::vector<DDXMLElement> elements{DDXMLElement(), other->rootElement(),
                                           document->rootElement().nodesForXPath("e[@c]")[0]};
  EXPECT_EQ(findStartTags(text, *document, elements),
            (std::vector<std::size_t>{std::string::npos, std::string::npos, text.find("<e c")}));
}

}  // namespace
}  // namespace tamzo::testing
