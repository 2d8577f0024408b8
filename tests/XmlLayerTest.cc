// Documents, elements, queries and node lists. tests/XmlGuardsTest.cc has the hostile documents.

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tamzo/xml/DDXMLDocument.h"
#include "tamzo/xml/DDXMLElement.h"
#include "tamzo/xml/NodeList.h"

namespace tamzo::testing {
namespace {

std::shared_ptr<DDXMLDocument> parse(const Text& xml) {
  XmlError error;
  auto document = DDXMLDocument::initWithXMLString(xml, 0, &error);
  EXPECT_NE(document, nullptr) << error.message << " in " << xml;
  return document;
}

DDXMLElement root(const Text& xml) { return parse(xml)->rootElement(); }

std::vector<std::string> texts(const NodeList& nodes) {
  std::vector<std::string> all;
  for (const DDXMLElement& node : nodes) {
    all.emplace_back(node.stringValue().view());
  }
  return all;
}
using Texts = std::vector<std::string>;

// ---- Documents -----------------------------------------------------------------------------

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
    const auto document = parse("<a><b c='value'>text</b><b>more</b></a>");
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

// ---- Elements ------------------------------------------------------------------------------

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

// ---- Queries -------------------------------------------------------------------------------

constexpr const char* kTree =
    "<r><a><b>1</b><c>x</c><b>2</b></a><d><b>3</b></d><a><b>4</b><e><b>5</b></e></a>"
    "<n:a xmlns:n='urn:n'><b>6</b></n:a><a xmlns='urn:o'><b>7</b></a></r>";

struct QueryRow {
  const char* path;
  Texts found;
};

// Plain paths, which are walked, and the same asked in a way that libxml2 evaluates.
const std::vector<QueryRow> kPlain{
    {"a/b", {"1", "2", "4"}},
    {"d/b", {"3"}},
    {"a/e/b", {"5"}},
    {"a/c", {"x"}},
    {"b", {}},
    {"a/B", {}},
    {"none/b", {}},
    {"a/none", {}},
    {"n/b", {}},
    {"r/a", {}},
    {"/r/a/b", {"1", "2", "4"}},
    {"/r/d/b", {"3"}},
    {"/a/b", {}},
    {"/none", {}},
};

TEST(Query, OfPlainNamesFindsChildrenWithoutNamespaceInDocumentOrder) {
  const DDXMLElement r = root(kTree);
  for (const QueryRow& row : kPlain) {
    const NodeList found = r.nodesForXPath(XPath(row.path));
    EXPECT_FALSE(found.isNil()) << row.path;
    EXPECT_EQ(texts(found), row.found) << row.path;
    EXPECT_EQ(r.firstNodeForXPath(XPath(row.path)).stringValue(),
              row.found.empty() ? Text() : Text(row.found[0]))
        << row.path;
    const std::string evaluated = std::string(row.path) + "[true()]";
    EXPECT_EQ(texts(r.nodesForXPath(XPath(evaluated))), row.found) << evaluated;
  }
}

TEST(Query, OfAnyOtherKindIsEvaluated) {
  const std::vector<QueryRow> rows{
      {"//b", {"1", "2", "3", "4", "5", "6"}},
      {"a[2]/b", {"4"}},
      {"(a/b)[last()]", {"4"}},
      {"*/b", {"1", "2", "3", "4", "6"}},
      {"a/b/text()", {"1", "2", "4"}},
      {"a/c/..", {"1x2"}},
      {"d | a[1]", {"1x2", "3"}},
      {"/",
       {"1x2345"
        "67"}},
      {".",
       {"1x2345"
        "67"}},
      {"child::d", {"3"}},
      {"a/b[. > 1]", {"2", "4"}},
      {"@none", {}},
      {"//none", {}},
  };
  const DDXMLElement r = root(kTree);
  for (const QueryRow& row : rows) {
    XmlError error;
    const NodeList found = r.nodesForXPath(XPath(row.path), &error);
    EXPECT_FALSE(found.isNil()) << row.path << ": " << error.message;
    EXPECT_EQ(texts(found), row.found) << row.path;
  }
}

TEST(Query, IsRelativeToItsElementUnlessItBeginsWithASlash) {
  const auto document = parse(kTree);
  const DDXMLElement e = document->nodesForXPath("/r/a/e").at(0);
  EXPECT_EQ(texts(e.nodesForXPath("b")), Texts{"5"});
  EXPECT_EQ(texts(e.nodesForXPath("./b")), Texts{"5"});
  EXPECT_EQ(texts(e.nodesForXPath("/r/d/b")), Texts{"3"});
  EXPECT_EQ(texts(e.nodesForXPath("../b")), Texts{"4"});
  EXPECT_EQ(texts(document->nodesForXPath("r/d")), Texts{"3"});
  EXPECT_TRUE(document->nodesForXPath("/d").empty());
}

TEST(Query, FindsAttributesToo) {
  const NodeList found = root("<r><a i='1'/><a/><a i='2'/></r>").nodesForXPath("a/@i");
  EXPECT_EQ(texts(found), (Texts{"1", "2"}));
  EXPECT_EQ(found.at(0).name(), Text("i"));
}

TEST(Query, ThatFailsGivesNilAndSaysWhy) {
  const DDXMLElement r = root(kTree);
  for (const char* path : {"a[", "a//", "a/", "//", "", "@", "a b", "a/@", "n:a", "count(a)",
                           "1 + 1", "'text'", "true()", "unknown()", "$variable", "..."}) {
    XmlError error;
    EXPECT_TRUE(r.nodesForXPath(XPath(path), &error).isNil()) << path;
    EXPECT_FALSE(error.message.empty()) << path;
    EXPECT_FALSE(r.firstNodeForXPath(XPath(path))) << path;
  }
}

// ---- Node lists ----------------------------------------------------------------------------

TEST(List, TellsNilFromEmpty) {
  EXPECT_TRUE(NodeList().isNil());
  EXPECT_TRUE(NodeList().empty());
  EXPECT_FALSE(NodeList::makeEmpty().isNil());
  EXPECT_TRUE(NodeList::makeEmpty().empty());
  EXPECT_TRUE(NodeList::makeEmpty().nodesUnderFirst("a").isNil());
  EXPECT_TRUE(NodeList().nodesUnderFirst("a").isNil());
  EXPECT_FALSE(NodeList().firstMatch("a"));
  EXPECT_FALSE(NodeList::makeEmpty().firstMatch("a"));
  EXPECT_THROW(static_cast<void>(NodeList().at(0)), std::out_of_range);
  const NodeList one = NodeList::of(root("<r/>"));
  EXPECT_EQ(one.size(), 1U);
  EXPECT_FALSE(one.nodesUnderFirst("a").isNil());
  EXPECT_TRUE(one.nodesUnderFirst("a").empty());
  EXPECT_THROW(static_cast<void>(one.at(1)), std::out_of_range);
}

TEST(List, HoldsAnyNumberOfNodesAndIsCopiedWhole) {
  std::string xml;
  Texts expected;
  for (int i = 0; i < 100; ++i) {
    const NodeList list = root("<r>" + xml + "</r>").nodesForXPath("a");
    const NodeList copy = list;
    NodeList moved = NodeList(list);
    NodeList assigned;
    assigned = std::move(moved);
    EXPECT_EQ(texts(list), expected);
    EXPECT_EQ(texts(copy), expected);
    EXPECT_EQ(texts(assigned), expected);
    expected.push_back(std::to_string(i));
    xml += "<a>" + expected.back() + "</a>";
  }
}

TEST(List, QueriesItsFirstNodeOnly) {
  const NodeList list = root("<r><a><b>1</b></a><a><b>2</b><c>3</c></a></r>").nodesForXPath("a");
  EXPECT_EQ(texts(list.nodesUnderFirst("b")), Texts{"1"});
  EXPECT_TRUE(list.nodesUnderFirst("c").empty());
  EXPECT_FALSE(list.firstMatch("c"));
}

TEST(List, FirstMatchIsTheSameHoweverOftenItIsAsked) {
  // Enough children for names to share a bucket of an index, each name twice.
  std::string xml;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 200; ++i) {
      const std::string name = "n" + std::to_string(i);
      xml += "<" + name + ">" + std::to_string(round) + name + "</" + name + ">";
      xml += "<x:" + name + ">other</x:" + name + "> text ";
    }
  }
  const NodeList list = NodeList::of(root("<r xmlns:x='urn:x'>" + xml + "</r>"));
  for (int round = 0; round < 3; ++round) {
    for (int i = 199; i >= 0; --i) {
      const std::string name = "n" + std::to_string(i);
      EXPECT_EQ(list.firstMatch(XPath(name)).stringValue(), Text("0" + name));
      const std::string unknown = "m" + std::to_string(i);
      EXPECT_FALSE(list.firstMatch(XPath(unknown))) << unknown;
    }
    EXPECT_EQ(list.firstMatch("n7/text()").stringValue(), Text("0n7"));
    EXPECT_EQ(list.firstMatch("/r/n7").stringValue(), Text("0n7"));
  }
}

TEST(List, AnIndexIsNotMistakenForThatOfAnotherList) {
  NodeList list = NodeList::of(root("<r><a>1</a></r>"));
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(list.firstMatch("a").stringValue(), Text("1"));
  }
  const NodeList copy = list;
  list = NodeList::of(root("<r><b/><a>2</a></r>"));
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(list.firstMatch("a").stringValue(), Text("2"));
    EXPECT_EQ(copy.firstMatch("a").stringValue(), Text("1"));
  }
}

}  // namespace
}  // namespace tamzo::testing
