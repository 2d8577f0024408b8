// Hostile documents: nothing outside the text is loaded, and nothing costs more than its size.
// What does would take minutes, and ctest ends it.

#include "xml/XmlParser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tamzo/xml/DDXMLDocument.h"
#include "tests/support/Documents.h"
#include "tests/support/Growth.h"
#include "tests/support/HttpServer.h"
#include "tests/support/Trees.h"
#include "xml/XmlTree.h"

namespace tamzo::testing {
namespace {

std::shared_ptr<DDXMLDocument> parse(const Text& xml, std::string* why = nullptr) {
  XmlError error;
  auto document = DDXMLDocument::initWithXMLString(xml, 0, &error);
  EXPECT_EQ(document == nullptr, !error.message.empty()) << error.message;
  if (why != nullptr) {
    *why = error.message;
  }
  return document;
}

TEST(XmlParserTest, SaysWhereAndWhyATextIsNone) {
  XmlError error;
  EXPECT_EQ(parseXml("<a>\n<b></a>", &error), nullptr);
  EXPECT_TRUE(error.message.starts_with("line 2: ")) << error.message;
  EXPECT_NE(error.message.back(), '\n');
  EXPECT_EQ(parseXml("", &error), nullptr);
  EXPECT_EQ(error.message, "the text is empty");
  EXPECT_EQ(parseXml(Text(), &error), nullptr);
  EXPECT_EQ(error.message, "the text is empty");
  EXPECT_EQ(parseXml("<a/>", nullptr)->doc()->children->next, nullptr);
  EXPECT_EQ(parseXml("<a>", nullptr), nullptr) << "nobody asks why";
}

TEST(XmlParserTest, ReadsAPartOfATextWithoutWhatFollows) {
  const Text whole(std::string("<a>1</a><a>2</a>"));
  const auto tree = parseXml(whole.part(whole.view().substr(0, 8)), nullptr);
  ASSERT_NE(tree, nullptr);
  EXPECT_STREQ(asChars(xmlDocGetRootElement(tree->doc())->children->content), "1");
  EXPECT_EQ(parseXml(whole.part(whole.view().substr(0, 7)), nullptr), nullptr);
}

// ---- Nothing from outside ------------------------------------------------------------------

std::vector<std::string> documentsThatReferTo(const std::string& address) {
  return {
      "<!DOCTYPE a [<!ENTITY e SYSTEM \"" + address + "\">]><a b=\"1\">&e;</a>",
      "<!DOCTYPE a [<!ENTITY e PUBLIC \"id\" \"" + address + "\">]><a>&e;&e;</a>",
      "<!DOCTYPE a [<!ENTITY e SYSTEM \"" + address + "\"><!ENTITY f \"&e;\">]><a>&f;</a>",
      "<!DOCTYPE a SYSTEM \"" + address + "\"><a/>",
      "<!DOCTYPE a SYSTEM \"" + address + "\"><a>&e;</a>",
      "<!DOCTYPE a PUBLIC \"-//W3C//DTD XHTML 1.0 Strict//EN\" \"" + address + "\"><a/>",
      "<!DOCTYPE a [<!ENTITY % p SYSTEM \"" + address + "\"> %p;]><a/>",
      "<!DOCTYPE a SYSTEM \"" + address + "\" [<!ENTITY % p SYSTEM \"" + address + "\"> %p;]><a/>",
      "<!DOCTYPE a [<!NOTATION n SYSTEM \"" + address + "\"><!ENTITY e SYSTEM \"" + address +
          "\" NDATA n>]><a/>",
      "<a xmlns:i=\"http://www.w3.org/2001/XInclude\"><i:include href=\"" + address +
          "\" parse=\"text\"/></a>",
      "<?xml-stylesheet href=\"" + address + "\" type=\"text/xsl\"?><a/>",
      "<a xmlns:s=\"http://www.w3.org/2001/XMLSchema-instance\" "
      "s:noNamespaceSchemaLocation=\"" +
          address + "\"/>",
  };
}

// What a host could see of a document.
std::string everythingIn(const DDXMLDocument& document) {
  const DDXMLElement root = document.rootElement();
  return std::string(root.stringValue().view()) + std::string(root.XMLString().view());
}

TEST(XmlParserTest, NoFileIsRead) {
  const std::string path = ::testing::TempDir() + "/tamzo-xml-guards.txt";
  std::ofstream(path) << "the secret";
  for (const std::string& address : {path, "file://" + path}) {
    for (const std::string& xml : documentsThatReferTo(address)) {
      if (const auto document = parse(xml)) {
        EXPECT_EQ(everythingIn(*document).find("secret"), std::string::npos) << xml;
        EXPECT_TRUE(document->rootElement().stringValue().view().empty()) << xml;
      }
    }
  }
  std::remove(path.c_str());
}

TEST(XmlParserTest, NoRequestIsMade) {
  HttpServer server;
  server.serve("/x", "<!ENTITY e 'the secret'>");
  for (const std::string& xml : documentsThatReferTo(server.url("/x"))) {
    if (const auto document = parse(xml)) {
      EXPECT_EQ(everythingIn(*document).find("secret"), std::string::npos) << xml;
    }
  }
  EXPECT_TRUE(server.requests().empty()) << server.requests().front();
}

// ---- Document types ------------------------------------------------------------------------

TEST(XmlParserTest, ParameterEntitiesAreRefused) {
  for (const char* declaration :
       {"<!ENTITY % p ''>", "<!ENTITY % p 'x'> %p;", "<!ENTITY % p SYSTEM 'x'>",
        "<!ENTITY % p \"<!ENTITY e 'x'>\"> %p;", "%p;"}) {
    const std::string xml = std::string("<!DOCTYPE a [") + declaration + "]><a/>";
    const auto document = parse(xml);
    if (std::string_view(declaration) != "%p;") {
      EXPECT_EQ(document, nullptr) << xml;
    }
  }
  // Each of these doubles the work of the one before.
  std::string doubling = "<!ENTITY % p0 'x'>";
  for (int i = 1; i < 40; ++i) {
    const std::string inner = "&#37;p" + std::to_string(i - 1) + ";";
    doubling += "<!ENTITY % p" + std::to_string(i) + " '" + inner + inner + "'>";
  }
  EXPECT_EQ(parse("<!DOCTYPE a [" + doubling + " %p39;]><a/>"), nullptr);
}

TEST(XmlParserTest, AFewDeclarationsOfStructureAreRead) {
  const auto document = parse(
      "<!DOCTYPE a [<!-- <!ELEMENT a --><?p <!ELEMENT ?><!ENTITY e ']>'>\n<!ELEMENT a ANY>"
      "<!NOTATION n SYSTEM '>'><!ATTLIST a b CDATA 'given' c (x|y) #IMPLIED>]><a c='x'>&e;</a>");
  ASSERT_NE(document, nullptr);
  EXPECT_TRUE(document->rootElement().attributeValue("b").isNil()) << "defaults are left out";
  EXPECT_EQ(document->rootElement().attributeValue("c"), Text("x"));
  EXPECT_EQ(document->rootElement().stringValue(), Text("]>"));
}

TEST(XmlParserTest, LongDeclarationsOfStructureAreRefused) {
  const std::string names = repeat("|n", 3000);
  for (const std::string& declaration :
       {"<!ELEMENT a (#PCDATA" + names + ")*>", "<!ATTLIST a b (n" + names + ") 'n'>",
        "<!ATTLIST a b CDATA '" + names + ">'>", "<!NOTATION n SYSTEM \"" + names + "\">",
        repeat("<!ELEMENT a ANY>", 250) + "<!ELEMENT b (c" + repeat(" ", 200) + ")>",
        "<!ENTITY e ']>'><!-- ]> --><?p ]>?><!ELEMENT a (#PCDATA" + names + ")*>"}) {
    EXPECT_EQ(parse("<!DOCTYPE a [" + declaration + "]><a/>"), nullptr)
        << declaration.substr(0, 40);
  }
  // The same text elsewhere declares nothing.
  EXPECT_NE(parse("<!DOCTYPE a [<!ENTITY e '<!ELEMENT" + names + "'><!-- <!ELEMENT" + names +
                  "-->]><a><![CDATA[<!ELEMENT" + names + "]]></a>"),
            nullptr);
  EXPECT_NE(parse("<!DOCTYPE a><a><![CDATA[<!ELEMENT" + names + "]]></a>"), nullptr);
}

TEST(XmlParserTest, DefaultAttributesOfManyElementsAreRefused) {
  for (const std::string attribute :
       {"b CDATA 'd'", "b CDATA ''", "xmlns:b CDATA 'u'", "b CDATA #FIXED 'd'"}) {
    for (const auto& [count, isAccepted] :
         std::vector<std::pair<int, bool>>{{1000, true}, {100'000, false}}) {
      const auto document = parse("<!DOCTYPE r [<!ATTLIST a " + attribute + ">]><r>" +
                                  repeat("<a/>", count) + "</r>");
      EXPECT_EQ(document != nullptr, isAccepted) << count << " times " << attribute;
    }
  }
  EXPECT_EQ(parse("<!DOCTYPE r [<!ATTLIST a b CDATA '" + std::string(4000, 'd') + "'>]><r>" +
                  repeat("<a/>", 3000) + "</r>"),
            nullptr);
  EXPECT_NE(parse("<!DOCTYPE r [<!ATTLIST a b CDATA #IMPLIED>]><r>" +
                  repeat("<a b='own'/>", 100'000) + "</r>"),
            nullptr)
      << "an attribute of its own is no default";
}

TEST(XmlParserTest, DeclarationsAreBounded) {
  for (const char* value : {" 'x'>", " SYSTEM 'x' NDATA n>"}) {
    for (const auto& [count, isAccepted] :
         std::vector<std::pair<int, bool>>{{100, true}, {5000, false}}) {
      std::string declarations;
      for (int i = 0; i < count; ++i) {
        declarations += "<!ENTITY e" + std::to_string(i) + value;
      }
      EXPECT_EQ(parse("<!DOCTYPE a [" + declarations + "]><a/>") != nullptr, isAccepted)
          << count << " times" << value;
    }
  }
}

// ---- Entities ------------------------------------------------------------------------------

// e0 stands for `text`, and each next one for `times` of the one before.
std::string entityTower(const std::string& text, int levels, int times) {
  std::string declarations = "<!ENTITY e0 '" + text + "'>";
  for (int i = 1; i < levels; ++i) {
    declarations += "<!ENTITY e" + std::to_string(i) + " '" +
                    repeat("&e" + std::to_string(i - 1) + ";", times) + "'>";
  }
  return "<!DOCTYPE a [" + declarations + "]>";
}

TEST(XmlParserTest, EntitiesThatExplodeAreRefused) {
  for (const char* place : {"<a>&e9;</a>", "<a b='&e9;'/>", "<a><b>&e9;</b></a>"}) {
    EXPECT_EQ(parse(entityTower("lol", 10, 10) + place), nullptr) << place;
  }
  EXPECT_EQ(parse(entityTower("x", 100, 1) + "<a>&e99;</a>"), nullptr) << "nested too deep";
}

TEST(XmlParserTest, EntitiesOfReasonableSizeAreRead) {
  auto document = parse(entityTower("lol", 3, 5) + "<a>&e2;</a>");
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(document->rootElement().stringValue(), Text(repeat("lol", 25)));
  document = parse(entityTower("x", 10, 1) + "<a>&e9;</a>");
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(document->rootElement().stringValue(), Text("x"));
}

TEST(XmlParserTest, AnEntityOfElementsIsReadUnderANamespace) {
  for (const char* declared :
       {"xmlns='urn:d'", "xmlns:p='urn:p'", "xmlns='urn:d' xmlns:p='urn:p'"}) {
    const auto document =
        parse(std::string("<!DOCTYPE a [<!ENTITY e '<b>x</b>'>]><a ") + declared + ">&e;&e;</a>");
    ASSERT_NE(document, nullptr) << declared;
    EXPECT_EQ(document->rootElement().stringValue(), Text("xx")) << declared;
  }
}

TEST(XmlParserTest, ALongEntityThatIsUsedOftenIsRefused) {
  const std::string dtd = entityTower(std::string(100'000, 'x'), 1, 0);
  EXPECT_EQ(parse(dtd + "<a>" + repeat("&e0;", 10'000) + "</a>"), nullptr);
  EXPECT_EQ(parse(dtd + "<a>" + repeat("<b c='&e0;'/>", 10'000) + "</a>"), nullptr);
  EXPECT_NE(parse(dtd + "<a>" + repeat("&e0;", 10) + "</a>"), nullptr);
}

TEST(XmlParserTest, EntitiesThatReferToThemselvesAreRefused) {
  for (const char* declarations : {"<!ENTITY e '&e;'>", "<!ENTITY e '&f;'><!ENTITY f '&e;'>",
                                   "<!ENTITY e '&f;&f;'><!ENTITY f '&g;'><!ENTITY g '&e;&e;'>"}) {
    for (const char* place : {"<a>&e;</a>", "<a b='&e;'/>"}) {
      EXPECT_EQ(parse(std::string("<!DOCTYPE a [") + declarations + "]>" + place), nullptr)
          << declarations << place;
    }
  }
}

// ---- Shape ---------------------------------------------------------------------------------

TEST(XmlParserTest, DepthIsBounded) {
  for (const auto& [depth, isAccepted] : std::vector<std::pair<int, bool>>{
           {100, true}, {256, true}, {10'000, false}, {100'000, false}}) {
    const auto document = parse(repeat("<a>", depth) + "x" + repeat("</a>", depth));
    EXPECT_EQ(document != nullptr, isAccepted) << depth;
    if (document != nullptr) {
      EXPECT_EQ(document->rootElement().stringValue(), Text("x")) << depth;
    }
  }
  EXPECT_EQ(parse(repeat("<a>", 100'000)), nullptr);
}

std::string attributes(int count, const std::string& prefix = "a") {
  std::string all;
  for (int i = 0; i < count; ++i) {
    all += " " + prefix + std::to_string(i) + "=\"urn:" + std::to_string(i) + "\"";
  }
  return all;
}

TEST(XmlParserTest, AttributesAreBounded) {
  EXPECT_EQ(parse("<a" + attributes(30'000) + "/>"), nullptr);
  EXPECT_EQ(parse("<r><a>" + repeat("x", 9000) + "</a><a" + attributes(30'000) + "></a></r>"),
            nullptr);
  const auto document = parse("<a" + attributes(500) + "/>");
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(document->rootElement().attributeValue("a499"), Text("urn:499"));
  EXPECT_EQ(parse("<!DOCTYPE r [<!ENTITY e '&#60;a" + attributes(2000) + "/>'>]><r>&e;</r>"),
            nullptr);
  EXPECT_EQ(parse("<!DOCTYPE r [<!ENTITY e '<a" + attributes(2000) + "/>'>]><r>&e;</r>"), nullptr);
  EXPECT_EQ(parse("<r><![CDATA[<]]><!--<--><?p <?><a" + attributes(2000) + "/></r>"), nullptr);
  // Many elements of a few attributes are no trouble.
  EXPECT_NE(parse("<r>" + repeat("<a" + attributes(20) + "/>", 2000) + "</r>"), nullptr);
}

TEST(XmlParserTest, EqualsSignsElsewhereAreNoAttributes) {
  const std::string pairs = repeat("key=value&", 5000);
  const std::string escaped = repeat("key=value&amp;", 5000);
  const std::string script = "<script>for(i=0;i<n;i++){" + pairs + "}";
  for (const std::string& xml :
       {"<a><![CDATA[" + script + "]]></a>", "<a><!--" + script + "--></a>",
        "<a><?p " + script + "?></a>", "<a><![CDATA[<" + pairs + "]]></a>",
        "<!DOCTYPE a [<!-- <" + pairs + "--><!ENTITY e '" + escaped + "'>]><a/>",
        "<a>" + escaped + "</a>", "<a b=\"" + escaped + "\"/>", "<a b='" + escaped + "'/>",
        "<a><![CDATA[" + pairs + "]]></a>", "<a><!--" + pairs + "--></a>",
        "<a><?p " + pairs + "?></a>"}) {
    std::string why;
    EXPECT_NE(parse(xml, &why), nullptr) << xml.substr(0, 20) << ": " << why;
  }
}

TEST(XmlParserTest, NamespaceDeclarationsAreBounded) {
  EXPECT_EQ(parse("<a" + attributes(16'000, "xmlns:n") + "/>"), nullptr);
  // One an element, all in scope at once.
  std::string nested;
  for (int i = 0; i < 250; ++i) {
    nested += "<a" + attributes(64, "xmlns:n" + std::to_string(i) + "x") + ">";
  }
  EXPECT_EQ(parse(nested + repeat("</a>", 250)), nullptr);
  EXPECT_NE(parse("<a" + attributes(100, "xmlns:n") + "/>"), nullptr);
  EXPECT_NE(parse("<r>" + repeat("<a xmlns='urn:x' xmlns:y='urn:y'/>", 5000) + "</r>"), nullptr)
      << "out of scope again";
}

TEST(XmlParserTest, NulIsNoCharacter) {
  for (const std::string& xml :
       {std::string("<a/>\0", 5), std::string("\0<a/>", 5), std::string("<a>\0</a>", 8),
        std::string("<a/>\0<b", 7), std::string("<\0a\0/\0>\0", 8), std::string(4, '\0')}) {
    EXPECT_EQ(parse(Text(xml)), nullptr) << ::testing::PrintToString(xml);
  }
}

TEST(XmlParserTest, ManyPiecesOfTextAreReadInOneGo) {
  const int count = 200'000;
  for (const char* piece : {"x<!---->", "<![CDATA[x]]>", "x<b/>", "<b>x</b>", "x<?p?>", "&#120;"}) {
    const auto document = parse("<a>" + repeat(piece, count) + "</a>");
    ASSERT_NE(document, nullptr) << piece;
    EXPECT_EQ(document->rootElement().stringValue().view().size(), std::size_t{count}) << piece;
  }
}

TEST(XmlParserTest, ManyChildrenAreQueriedInOneGo) {
  const auto document = parse("<r>" + repeat("<a><b/></a>", 100'000) + "</r>");
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(document->nodesForXPath("/r/a/b").size(), 100'000U);
  EXPECT_EQ(document->nodesForXPath("//b").size(), 100'000U);
}

// What a text may hold in an entity is bounded as it is elsewhere.
TEST(XmlParserTest, WhatAnEntityHoldsIsBounded) {
  const std::string many = "<a" + attributes(2000) + "/>";
  for (const std::string& content :
       {repeat("<!--", 100'000), "<!--" + repeat("-- ", 100'000), repeat("<a>", 100'000),
        repeat("< ", 100'000), repeat("<?p ", 100'000), repeat("</a>", 100'000),
        "<a" + attributes(700, "xmlns:n") + "/>", many}) {
    std::string quoted = content;
    std::replace(quoted.begin(), quoted.end(), '"', '\'');
    const std::string declaration = "<!ENTITY e \"" + quoted + "\">";
    for (const std::string& xml :
         {"<!DOCTYPE r [" + declaration + "]><r>&e;</r>",
          "<!DOCTYPE r [" + declaration + "<!ENTITY f '&e;'><!ENTITY g '<a>&f;</a>'>]><r>&g;</r>",
          "<!DOCTYPE r [" + declaration + "<!ENTITY f '&e;'>]><r a='&f;'/>",
          "<!DOCTYPE r [" + declaration + "<!ENTITY f '&e;" + repeat("<b/><!---->", 50'000) +
              "'>]><r>&f;</r>"}) {
      EXPECT_EQ(parse(xml), nullptr) << content.substr(0, 20);
    }
  }
}

TEST(XmlParserTest, NamesInEntitiesCountWithAllOthers) {
  std::string names;
  for (int i = 0; i < 20'000; ++i) {
    names += "<n" + std::to_string(i) + "/>";
  }
  EXPECT_EQ(parse("<!DOCTYPE r [<!ENTITY e '" + names + "'>]><r>&e;</r>"), nullptr);
}

TEST(XmlParserTest, WhatADocumentTypeHoldsHidesNoTag) {
  const std::string large = "<a" + attributes(2000) + "/>";
  for (const char* subset : {"<!-- ' -->",
                             "<!-- \" -->",
                             "<!-- > -->",
                             "<!-- ]> -->",
                             "<!-- [ -->",
                             "<?p ' ?>",
                             "<?p \" ?>",
                             "<?p > ?>",
                             "<?p ]> ?>",
                             "<!ENTITY e \"'\">",
                             "<!ENTITY e '\">'>",
                             "<!ENTITY e ']>'>",
                             "<!ENTITY e '<![CDATA['>",
                             "<!ENTITY e '<!--'>",
                             "<!ENTITY e SYSTEM \"'\">",
                             "<!ENTITY e PUBLIC \"'\" \"'\">",
                             "<!NOTATION n SYSTEM \"'\">",
                             "<!ATTLIST a b CDATA \"'\">",
                             "<!-- <![CDATA[ -->",
                             "<!-- ' --><!-- \" --><?p '\"?>",
                             "<!ENTITY e '&#39;'>"}) {
    const std::string type = std::string("<!DOCTYPE r [") + subset + "]>";
    EXPECT_EQ(parse(type + "<r>" + large + "</r>"), nullptr) << type;
    EXPECT_NE(parse(type + "<r/>"), nullptr) << type;
  }
  for (const char* type : {"<!DOCTYPE r SYSTEM \"'\">", "<!DOCTYPE r PUBLIC \"'\" \"'\">",
                           "<!DOCTYPE r SYSTEM '\"' [<!-- \" -->]>", "<!-- ' --><!DOCTYPE r>",
                           "<?p ' ?><!DOCTYPE r>", "<!DOCTYPE r><!-- ' --><?p ' ?>"}) {
    EXPECT_EQ(parse(type + ("<r>" + large) + "</r>"), nullptr) << type;
    EXPECT_NE(parse(std::string(type) + "<r/>"), nullptr) << type;
  }
}

TEST(XmlParserTest, WhiteSpaceIsNoName) {
  // Runs of 24 blanks and tabs, no two of them alike.
  std::string all;
  for (unsigned i = 0; i < 30'000; ++i) {
    all += "<a/>";
    for (unsigned bit = 0; bit < 24; ++bit) {
      all += ((i >> bit) & 1U) == 0 ? ' ' : '\t';
    }
  }
  const auto document = parse("<r>" + all + "</r>");
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(document->rootElement().stringValue().view().size(), 30'000U * 24U);
  EXPECT_NE(parse("<!DOCTYPE r [<!ENTITY e '" + all + "'>]><r>&e;</r>"), nullptr);
  std::string names;
  for (int i = 0; i < 20'000; ++i) {
    names += "<n" + std::to_string(i) + "/>";
  }
  EXPECT_EQ(parse("<r>" + all + names + "</r>"), nullptr) << "names are bounded all the same";
}

TEST(XmlParserTest, LongNamesThatCostTooMuchAreRefused) {
  const std::string name(20'000, 'n');
  const auto undeclared = [&](const std::string& element, int count) {
    return "<r>" + repeat("<" + element + attributes(400, "p:a") + "/>", count) + "</r>";
  };
  EXPECT_EQ(parse(undeclared(name, 20)), nullptr);
  EXPECT_NE(parse(undeclared("an-ordinary-name", 200)), nullptr);
  const std::string type = "<!DOCTYPE r [<!ATTLIST a b CDATA #IMPLIED>]>";
  const auto declared = [&](const std::string& element, int count) {
    return type + "<r>" + repeat("<" + element + attributes(400) + "/>", count) + "</r>";
  };
  EXPECT_EQ(parse(declared(name, 20)), nullptr);
  EXPECT_NE(parse(declared("an-ordinary-name", 200)), nullptr);
  EXPECT_NE(parse("<r>" + repeat("<" + name + " a='1'/>", 20) + "</r>"), nullptr);
}

TEST(XmlParserTest, ManyErrorsEndAtTheFirst) {
  EXPECT_EQ(parse("<a>" + repeat("&undeclared;", 200'000) + "</a>"), nullptr);
  EXPECT_EQ(parse("<a>" + repeat("<b c='1' c='2'/>", 100'000) + "</a>"), nullptr);
  EXPECT_EQ(parse("<a>" + repeat("<x:b/>&", 100'000)), nullptr);
}

TEST(XmlParserTest, TheTimeOfAParseGrowsWithItsTextAlone) {
  for (const char* piece : {"x<!---->", "<![CDATA[x]]>", "x<b/>", "<b>x</b>", "x<?p?>", "&#120;",
                            "<b c='1' d='2'/>", "<b xmlns='u'/>", "text &amp; text "}) {
    EXPECT_TRUE(growsLinearly(4000, [piece](std::size_t size) {
      const std::string text = "<a>" + repeat(piece, static_cast<int>(size)) + "</a>";
      return [text] { EXPECT_NE(parseXml(text, nullptr), nullptr); };
    })) << piece;
  }
}

TEST(XmlParserTest, CountsTheNodesOfAText) {
  const std::vector<std::pair<std::string, std::size_t>> rows{
      {"<a/>", 1},
      {"<a>t<b/>t</a>", 2},
      {"<a b='1'/>", 3},
      {"<a b='1' xmlns:n='u' n:c=''/>", 6},
      {"<a><!--c-->t<![CDATA[d]]><?p i?></a>", 4},
      {"<!--c--><a/><?p?>", 3},
      {"<!DOCTYPE a [<!--c--><?p?>]><a/>", 3},
      {"<a>&#65;&amp;</a>", 1},
      // elements of an entity are there once; its declaration and each reference count for two
      {"<!DOCTYPE a [<!ENTITY e '<b/><b/>'>]><a>&e;&e;</a>", 1 + 2 + 2 + 4},
  };
  for (const auto& [xml, nodes] : rows) {
    XmlParser parser;
    EXPECT_NE(parser.parse(xml), nullptr) << xml;
    EXPECT_EQ(parser.nodes(), nodes) << xml;
    parser.setMaxNodes(nodes);
    EXPECT_NE(parser.parse(xml), nullptr) << xml;
    EXPECT_EQ(parser.bound(), "");
    parser.setMaxNodes(nodes - 1);
    EXPECT_EQ(parser.parse(xml), nullptr) << xml;
    EXPECT_EQ(parser.bound(), "nodes");
    EXPECT_EQ(parser.parseDocument(xml), nullptr) << xml;
    EXPECT_FALSE(parser.error().message.empty());
  }
}

TEST(XmlParserTest, StopsSoonAfterTheLastNodeThatMayBe) {
  XmlParser parser;
  parser.setMaxNodes(100);
  EXPECT_EQ(parser.parse("<a>" + repeat("<b/>", 100'000) + "</a>"), nullptr);
  EXPECT_EQ(parser.nodes(), 101U);
  EXPECT_NE(parser.parseDocument("<a/>"), nullptr) << "each text by itself";
  EXPECT_EQ(parser.nodes(), 1U);
  EXPECT_EQ(parser.error().message, "");
}

std::string namesFrom(int first, int count) {
  std::string all;
  for (int i = first; i < first + count; ++i) {
    all += "<n" + std::to_string(i) + "/>";
  }
  return all;
}

TEST(XmlParserTest, SaysWhichBoundWasPassed) {
  const std::string tower = entityTower(std::string(1000, 'x'), 8, 10);
  const std::string ten(11'000'000, 'x');
  const std::vector<std::pair<std::string, std::string_view>> rows{
      {"<a" + attributes(2000) + "/>", "attributes"},
      {"<!DOCTYPE a [<!-- ' -->]><a" + attributes(2000) + "/>", "attributes"},
      {"<!DOCTYPE a [<!ENTITY e \"<a" + repeat(" b='value'", 2000) + "/>\">]><a/>", "attributes"},
      {"<a" + attributes(700, "xmlns:n") + "/>", "namespaces"},
      {"<a>" + namesFrom(0, 20'000) + "</a>", "names"},
      {"<!DOCTYPE a [" + repeat("<!ENTITY e 'x'>", 300) + "]><a/>", "declarations"},
      {"<!DOCTYPE a [<!ELEMENT a (b" + repeat("|b", 3000) + ")>]><a/>", "document-type"},
      {"<!DOCTYPE a [<!ENTITY % p 'x'>]><a/>", "parameter-entities"},
      {tower + "<a>&e7;</a>", "entities"},
      {"<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a>&e;</a>", "entities"},
      {"<!DOCTYPE a [<!ATTLIST b c CDATA 'd'>]><a>" + repeat("<b/>", 100'000) + "</a>",
       "default-attributes"},
      {"<a>" + repeat("<" + std::string(20'000, 'n') + attributes(400, "p:a") + "/>", 20) + "</a>",
       "long-names"},
      {repeat("<a>", 300), "depth"},
      {"<!DOCTYPE a [<!ENTITY e '" + repeat("<a>", 300) + repeat("</a>", 300) + "'>]><a>&e;</a>",
       "depth"},
      {"<" + std::string(60'000, 'n') + "/>", "length"},
      {"<a b='" + ten + "'/>", "length"},
      {"<a><!--" + ten + "--></a>", "length"},
      {"<a><![CDATA[" + ten + "]]></a>", "length"},
      {"<a>" + repeat("&#65;xxxxxxxxx", 1'100'000) + "</a>", "length"},
      // no bound, but no XML either
      {"", ""},
      {"<a>", ""},
      {"<a>&e;</a>", ""},
      {"<a b='' b=''/>", ""},
      {std::string("<a>\0</a>", 8), ""},
  };
  for (const auto& [xml, bound] : rows) {
    XmlParser parser;
    EXPECT_EQ(parser.parse(Text(xml)), nullptr) << xml.substr(0, 60);
    EXPECT_EQ(parser.bound(), bound) << xml.substr(0, 60) << ": " << parser.error().message;
    EXPECT_NE(parser.error().message, "");
    EXPECT_NE(parser.parse("<a/>"), nullptr);
    EXPECT_EQ(parser.bound(), "");
  }
}

}  // namespace
}  // namespace tamzo::testing
