#include "xml/StartTags.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Documents.h"
#include "tests/support/Growth.h"

namespace tamzo::testing {
namespace {

std::vector<std::size_t> tagsOf(const std::string& text, const XPath& path) {
  const auto document = documentOf(text);
  std::vector<DDXMLElement> elements;
  for (const DDXMLElement& element : document->nodesForXPath(path)) {
    elements.push_back(element);
  }
  return findStartTags(text, *document, elements);
}

TEST(StartTagsTest, whatLooksLikeATagAndIsNoneIsPassedOver) {
  const std::string text =
      "<?pi <b>?><!DOCTYPE a [<!ENTITY e '<b/>'><!-- <b> --> <?x ]> ?>]><!-- <b> --><a x='>'>"
      "<![CDATA[<b>]]>&e;<b y=\"/>\"/></a><!-- <b> -->";
  EXPECT_EQ(tagsOf(text, "/a/b"), std::vector<std::size_t>{text.find("<b y")});
  EXPECT_EQ(tagsOf(text, "/a"), std::vector<std::size_t>{text.find("<a x")});
}

TEST(StartTagsTest, placesComeInTheOrderAsked) {
  const std::string text = "<a><b/><c><b/></c></a>";
  const auto document = documentOf(text);
  const DDXMLElement root = document->rootElement();
  const DDXMLElement inner = root.firstNodeForXPath("c/b");
  const DDXMLElement outer = root.firstNodeForXPath("b");
  const std::vector<DDXMLElement> asked{inner, DDXMLElement(), outer, root, inner};
  EXPECT_EQ(findStartTags(text, *document, asked),
            (std::vector<std::size_t>{10, std::string::npos, 3, 0, 10}));
}

TEST(StartTagsTest, anElementOfAnotherDocumentHasNoPlace) {
  const std::vector<DDXMLElement> other{root("<a/>")};
  EXPECT_EQ(findStartTags("<a/>", *documentOf("<a/>"), other),
            std::vector<std::size_t>{std::string::npos});
}

TEST(StartTagsTest, takesTimeLinearInText) {
  EXPECT_TRUE(growsLinearly(2000, [](std::size_t count) {
    const std::string text = "<a>" + repeat("<b c='1'/>", static_cast<int>(count)) + "</a>";
    return [text] { tagsOf(text, "/a/b"); };
  }));
}

}  // namespace
}  // namespace tamzo::testing
