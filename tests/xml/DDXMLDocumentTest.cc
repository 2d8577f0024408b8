#include "tamzo/xml/DDXMLDocument.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"

namespace tamzo::testing {
namespace {

TEST(Document, IsNullForWhatIsNoXmlAndSaysWhy) {
  for (const char* text : {"",
                           " ",
                           "abcd",
                           "<",
                           "<a",
                           "<a>",
                           "<a></b>",
                           "<a/><b/>",
                           "<a/>x",
                           "x<a/>",
                           "<a b/>",
                           "<a b=c/>",
                           "<a b='1' b='2'/>",
                           "<a>&undeclared;</a>",
                           "<a>\x01</a>",
                           "<a>&#0;</a>",
                           "<a>\xE4</a>",
                           "<a>\xC0\x80</a>",
                           "<a>]]></a>",
                           "<a><![CDATA[x</a>",
                           "<a><!-- -- --></a>",
                           "<!-- only -->",
                           "<a b='<'/>",
                           " <?xml version='1.0'?><a/>",
                           "{\"json\": true}"}) {
    XmlError error;
    EXPECT_EQ(DDXMLDocument::initWithXMLString(text, 0, &error), nullptr) << text;
    EXPECT_FALSE(error.message.empty()) << text;
    EXPECT_EQ(DDXMLDocument::initWithXMLString(text, 0), nullptr) << text;
  }
  EXPECT_EQ(DDXMLDocument::initWithXMLString(Text(), 0), nullptr);
}

TEST(Document, IsReadFromAnyWellFormedText) {
  const std::vector<std::pair<const char*, const char*>> rows{
      {"<a/>", "a"},
      {"\n <a/>\n ", "a"},
      {"<?xml version='1.0'?><a/>", "a"},
      {"<?xml version='1.1'?><a/>", "a"},
      {"<!-- c --><?p i?><a/><!-- c -->", "a"},
      {"<!DOCTYPE a><a/>", "a"},
      {"<x:a xmlns:x='urn:x'/>", "x:a"},
      {"<\xC3\xA4/>", "\xC3\xA4"},
      {"\xEF\xBB\xBF<a/>", "a"},
  };
  for (const auto& [text, name] : rows) {
    EXPECT_EQ(root(text).name(), Text(name)) << text;
  }
}

TEST(Document, IgnoresTheEncodingThatItNames) {
  for (const char* encoding : {"ISO-8859-1", "UTF-16", "UTF-8", "EBCDIC-CP-US", "no-such-thing"}) {
    const std::string text = std::string("<?xml version='1.0' encoding='") + encoding +
                             "'?><a b='\xC3\xA4'>\xE2\x82\xAC\xF0\x9F\x98\x80</a>";
    const DDXMLElement a = root(text);
    EXPECT_EQ(a.stringValue(), Text("\xE2\x82\xAC\xF0\x9F\x98\x80")) << encoding;
    EXPECT_EQ(a.attributeValue("b"), Text("\xC3\xA4")) << encoding;
  }
}

TEST(Document, IsKeptAliveByEverythingReadFromIt) {
  DDXMLElement element;
  DDXMLElement attribute;
  Text text;
  Text name;
  NodeList list;
  {
    const auto document = documentOf("<a><b c='value'>text</b><b>more</b></a>");
    list = document->nodesForXPath("/a/b");
    element = list.at(0);
    attribute = element.attributeForName("c");
    text = element.stringValue();
    name = element.name();
  }
  const DDXMLElement second = list.at(1);
  list = NodeList();
  EXPECT_EQ(second.stringValue(), Text("more"));
  EXPECT_EQ(element.XMLString(), Text("<b c=\"value\">text</b>"));
  element = DDXMLElement();
  EXPECT_EQ(attribute.stringValue(), Text("value"));
  EXPECT_EQ(name, Text("b"));
  attribute = DDXMLElement();
  EXPECT_EQ(text, Text("text"));
}

TEST(Document, HasNoNodesOnceItWasMovedAway) {
  const auto document = documentOf("<r><a/></r>");
  const DDXMLDocument taken = std::move(*document);
  EXPECT_EQ(taken.rootElement().name(), "r");
  EXPECT_FALSE(document->rootElement());
  EXPECT_TRUE(document->nodesForXPath("/r").isNil());
  EXPECT_TRUE(document->nodesForXPath("//r").isNil());
}

TEST(Document, ClearsTheErrorOfTheLastOneOnceAnotherIsRead) {
  XmlError error;
  EXPECT_EQ(DDXMLDocument::initWithXMLString("<a", 0, &error), nullptr);
  EXPECT_NE(error.message, "");
  EXPECT_NE(DDXMLDocument::initWithXMLString("<a/>", 0, &error), nullptr);
  EXPECT_EQ(error.message, "");
}

}  // namespace
}  // namespace tamzo::testing
