#include "tamzo/xml/DDXMLElement.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"

namespace tamzo::testing {
namespace {

TEST(Element, ThatIsNilReadsAsNil) {
  const DDXMLElement nil;
  EXPECT_FALSE(nil);
  EXPECT_TRUE(nil.name().isNil());
  EXPECT_TRUE(nil.stringValue().isNil());
  EXPECT_FALSE(nil.attributeForName("a"));
  EXPECT_TRUE(nil.attributeValue("a").isNil());
  EXPECT_TRUE(nil.XMLString().isNil());
  EXPECT_TRUE(nil.nodesForXPath("a").isNil());
  EXPECT_TRUE(nil.nodesForXPath("//a").isNil());
  EXPECT_FALSE(nil.firstNodeForXPath("a"));
  EXPECT_FALSE(nil.firstChildElement());
  EXPECT_FALSE(nil.nextSiblingElement());
  EXPECT_FALSE(nil.hasAttributes());
}

TEST(Element, HasTheTextOfAllItsDescendants) {
  const std::string dtd =
      "<!DOCTYPE a [<!ENTITY e 'E&amp;'><!ENTITY f 'F&e;'><!ENTITY g '<b>G</b>'>]>";
  const std::vector<std::pair<std::string, std::string>> rows{
      {"<a/>", ""},
      {"<a></a>", ""},
      {"<a> \n\t</a>", " \n\t"},
      {"<a>one</a>", "one"},
      {"<a>1<b>2<c>3</c>4</b>5</a>", "12345"},
      {"<a><b/><c><d/></c></a>", ""},
      {"<a><![CDATA[ <x> & ]]></a>", " <x> & "},
      {"<a> <![CDATA[1]]> 2<![CDATA[3]]></a>", " 1 23"},
      {"<a><![CDATA[]]></a>", ""},
      {"<a>1<!-- c -->2</a>", "12"},
      {"<a><!-- c --></a>", ""},
      {"<a>1<?p i?>2</a>", "12"},
      {"<a>&lt;&amp;&gt;&quot;&apos;</a>", "<&>\"'"},
      {"<a>&#65;&#x42;&#x1F600;</a>", "AB\xF0\x9F\x98\x80"},
      {"<a>1\r\n2\r3</a>", "1\n2\n3"},
      {dtd + "<a>&e;</a>", "E&"},
      {dtd + "<a>1&f;2&e;</a>", "1FE&2E&"},
      {dtd + "<a>&g;</a>", "G"},
      {dtd + "<a><b>&e;</b>x</a>", "E&x"},
  };
  for (const auto& [xml, text] : rows) {
    EXPECT_EQ(root(xml).stringValue(), Text(text)) << xml;
  }
}

TEST(Element, HasAttributesByNameAsWritten) {
  const DDXMLElement a = root(
      "<a xmlns:x='urn:x' xmlns:y='urn:x' plain='1' x:both='2' both='3' empty='' white=' \n4 '"
      " escaped='&lt;&#65;&amp;' xml:lang='en'/>");
  const std::vector<std::pair<const char*, const char*>> rows{
      {"plain", "1"},    {"x:both", "2"},    {"both", "3"},      {"empty", ""},
      {"white", "  4 "}, {"escaped", "<A&"}, {"xml:lang", "en"},
  };
  for (const auto& [name, value] : rows) {
    EXPECT_EQ(a.attributeValue(name), Text(value)) << name;
    EXPECT_EQ(a.attributeForName(name).stringValue(), Text(value)) << name;
    EXPECT_EQ(a.attributeForName(name).name(), Text(name)) << name;
  }
  for (const char* absent :
       {"Plain", "plai", "x:plain", "lang", "y:both", "x", "", ":both", "xmlns:x"}) {
    EXPECT_FALSE(a.attributeForName(absent)) << absent;
    EXPECT_TRUE(a.attributeValue(absent).isNil()) << absent;
  }
  EXPECT_TRUE(a.hasAttributes());
  EXPECT_FALSE(root("<a/>").hasAttributes());
  EXPECT_FALSE(a.attributeForName("plain").attributeForName("plain"));
}

TEST(Element, AttributesMayHoldDeclaredEntities) {
  EXPECT_EQ(root("<!DOCTYPE a [<!ENTITY e 'E'>]><a b='1&e;2'/>").attributeValue("b"), Text("1E2"));
}

TEST(Element, NamesItsChildElementsInTurn) {
  const DDXMLElement a = root("<a>text<!-- c --><b/>text<?p i?><c><d/></c></a>");
  const DDXMLElement b = a.firstChildElement();
  EXPECT_EQ(b.name(), Text("b"));
  EXPECT_EQ(b.nextSiblingElement().name(), Text("c"));
  EXPECT_FALSE(b.firstChildElement());
  EXPECT_FALSE(b.nextSiblingElement().nextSiblingElement());
  EXPECT_EQ(b, a.nodesForXPath("b").at(0));
  EXPECT_FALSE(b == b.nextSiblingElement());
}

TEST(Element, IsWrittenBackAsXml) {
  const std::string dtd = "<!DOCTYPE a [<!ENTITY e '&lt;E>'>]>";
  struct Row {
    std::string xml;
    std::string written;
  };
  const std::vector<Row> rows{
      {"<a/>", "<a/>"},
      {"<a></a>", "<a/>"},
      {"<a c = '1' b=\"2\"> t <x>y</x></a>", "<a c=\"1\" b=\"2\"> t <x>y</x></a>"},
      {"<a><![CDATA[<&]]>&lt;&#228;<!--c--><?p i?></a>",
       "<a><![CDATA[<&]]>&lt;\xC3\xA4<!--c--><?p i?></a>"},
      {"<x:a xmlns:x='urn:x' x:b='1'/>", "<x:a xmlns:x=\"urn:x\" x:b=\"1\"/>"},
      {dtd + "<a b='&e;'>1&e;2<c>&e;</c></a>", "<a b=\"&e;\">1&e;2<c>&e;</c></a>"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(root(row.xml).XMLString(), Text(row.written)) << row.xml;
  }
}

TEST(Element, IsWrittenAlikeHoweverPlainItIs) {
  for (const std::string xml : {"<a/>",
                                "<a></a>",
                                "<a>text</a>",
                                "<a> \n\t</a>",
                                "<a>a&gt;b</a>",
                                "<a>a&lt;b</a>",
                                "<a>a&amp;b</a>",
                                "<a>&#13;</a>",
                                "<a>&#10;&#9;&#34;&#39;</a>",
                                "<a>\xC3\xA4\xE2\x82\xAC</a>",
                                "<a>&#127;&#128;&#65533;</a>",
                                "<\xC3\xA9>x</\xC3\xA9>",
                                "<a><![CDATA[x]]></a>",
                                "<a><!--x--></a>",
                                "<a><?p x?></a>",
                                "<a>x<b/></a>",
                                "<a><b>x</b></a>",
                                "<a b=''/>",
                                "<a b=''>x</a>",
                                "<a xmlns='u'/>",
                                "<a xmlns:p='u'>x</a>",
                                "<p:a xmlns:p='u'/>"}) {
    // With a document type libxml2 writes every element itself.
    EXPECT_EQ(root(xml).XMLString(), root("<!DOCTYPE a>" + xml).XMLString()) << xml;
  }
  EXPECT_EQ(root("<a>1 \"2\" '3'</a>").XMLString(), Text("<a>1 \"2\" '3'</a>"));
  const std::string xhtml = "<!DOCTYPE html PUBLIC '-//W3C//DTD XHTML 1.0 Strict//EN' 'x'>";
  EXPECT_EQ(root(xhtml + "<p><b/></p>").firstChildElement().XMLString(), Text("<b></b>"));
}

TEST(Element, IsWrittenWithoutWhatStandsAroundIt) {
  const DDXMLElement b = root("<a>1<b c='2'/>3</a>").firstChildElement();
  EXPECT_EQ(b.XMLString(), Text("<b c=\"2\"/>"));
}

// ---- Many children at once -----------------------------------------------------------------

TEST(FirstChildren, AreThoseThatEachNameAloneWouldFind) {
  const std::vector<std::string_view> names{"A", "a", "a", "aa", "ab", "b", "m", "none", "z"};
  for (const char* xml :
       {"<r/>", "<r>text</r>", "<r><b>1</b></r>", "<r><a>1</a><a>2</a><aa>3</aa><aaa>4</aaa></r>",
        "<r><z>1</z><m><a>deeper</a></m><ab>2</ab>text<!-- a --><?a a?><A>3</A><z>4</z></r>",
        "<r xmlns:x='urn:x'><x:a>1</x:a><a>2</a><b xmlns='urn:x'>3</b></r>",
        "<!DOCTYPE r [<!ENTITY e '<a>1</a>'>]><r>&e;<b>2</b></r>"}) {
    const DDXMLElement r = root(xml);
    const auto found = r.firstChildren(names);
    ASSERT_EQ(found.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
      const bool isRepeated = i > 0 && names[i] == names[i - 1];
      const auto expected = isRepeated ? DDXMLElement() : r.firstNodeForXPath(XPath(names[i]));
      EXPECT_TRUE(found[i] == expected) << names[i] << " in " << xml;
    }
  }
}

TEST(FirstChildren, OfNilAreNil) {
  const std::vector<std::string_view> names{"a", "b"};
  EXPECT_EQ(DDXMLElement().firstChildren(names), (std::vector<DDXMLElement>(2)));
  EXPECT_TRUE(root("<r><a/></r>").firstChildren({}).empty());
  EXPECT_EQ(root("<r a='1'/>").attributeForName("a").firstChildren(names),
            (std::vector<DDXMLElement>(2)));
}

TEST(Element, IsNilOnceItWasMovedAway) {
  DDXMLElement source = root("<r><a>1</a></r>");
  const DDXMLElement made(std::move(source));
  EXPECT_FALSE(source);  // NOLINT(bugprone-use-after-move)
  EXPECT_TRUE(source.stringValue().isNil());
  EXPECT_TRUE(source.nodesForXPath("a").isNil());
  EXPECT_TRUE(source.nodesForXPath("//a").isNil());
  EXPECT_EQ(made.stringValue(), "1");
  source = made;
  DDXMLElement assigned = root("<other/>");
  assigned = std::move(source);
  EXPECT_FALSE(source);  // NOLINT(bugprone-use-after-move)
  EXPECT_TRUE(source.name().isNil());
  EXPECT_TRUE(assigned == made);
  DDXMLElement& same = assigned;
  assigned = std::move(same);
  EXPECT_TRUE(assigned == made) << "moved into itself";
}

}  // namespace
}  // namespace tamzo::testing
