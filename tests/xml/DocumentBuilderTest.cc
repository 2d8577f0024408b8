#include "xml/DocumentBuilder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "tamzo/xml/DDXMLDocument.h"
#include "tests/support/Documents.h"
#include "tests/support/SdkFixture.h"
#include "tests/support/StrictXml.h"

namespace tamzo::testing {
namespace {

DDXMLElement root(const std::string& xml) { return parseDocument(xml)->rootElement(); }

// What "r" is with a copy of each child of the roots of `documents`.
std::string merged(const std::vector<std::string>& documents) {
  DocumentBuilder builder("r");
  for (const std::string& xml : documents) {
    for (DDXMLElement child = root(xml).firstChildElement(); child;
         child = child.nextSiblingElement()) {
      builder.root().appendCopy(child);
    }
  }
  const std::string written = builder.write();
  EXPECT_EQ(strictComplaint(written), "") << written;
  return written;
}

TEST(DocumentBuilder, WritesWhatItIsGiven) {
  DocumentBuilder builder("r");
  EXPECT_EQ(builder.write(), "<r/>");
  DocumentBuilder::Element a = builder.root().append("a");
  a.setAttribute("b", "<&\"'\n\xC3\xA4>");
  a.setAttribute("c", "");
  a.append("d");
  builder.root().append("e");
  EXPECT_EQ(builder.write(),
            "<r><a b=\"&lt;&amp;&quot;'&#10;\xC3\xA4&gt;\" c=\"\"><d/></a><e/></r>");
}

TEST(DocumentBuilder, ReplacesWhatXmlCannotHold) {
  DocumentBuilder builder("r");
  builder.root().setAttribute("a",
                              std::string_view("\0\x01\xFF\xC3(\xEF\xBF\xBF-\xF0\x9F\x98\x80", 13));
  const std::string written = builder.write();
  EXPECT_EQ(strictComplaint(written), "");
  EXPECT_EQ(root(written).attributeValue("a"),
            Text("\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD(\xEF\xBF\xBD-\xF0\x9F\x98\x80"));
}

TEST(DocumentBuilder, CopiesWholeElements) {
  const std::string a =
      "<a b=\"&lt;&#10;\" c=\"\"> t <![CDATA[<&]]>&lt;<!-- c --><?p i?><?q?><d><e/>f</d></a>";
  EXPECT_EQ(merged({"<s>" + a + "<b/></s>"}), "<r>" + a + "<b/></r>");
}

TEST(DocumentBuilder, CopiesElementsInPart) {
  DocumentBuilder builder("r");
  const DDXMLElement a = root("<a b='1'>t<c/><d/>u<c/></a>");
  builder.root().appendTagOf(a).append("x");
  builder.root().appendCopyWithout(a, a.firstChildElement());
  builder.root().appendCopyWithout(a, {});
  builder.root().appendCopy({});
  EXPECT_EQ(builder.write(),
            "<r><a b=\"1\"><x/></a><a b=\"1\">t<d/>u<c/></a><a b=\"1\">t<c/><d/>u<c/></a></r>");
}

TEST(DocumentBuilder, OutlivesTheDocumentsCopied) {
  DocumentBuilder builder("r");
  for (int i = 0; i < 100; ++i) {
    const std::string n = std::to_string(i);
    builder.root().appendCopy(
        root("<a xmlns:p='u" + n + "'><p:b" + n + "/></a>").firstChildElement());
  }
  const auto document = parseDocument(builder.write());
  for (int i = 0; i < 100; ++i) {
    const std::string n = std::to_string(i);
    const std::string path = "//*[local-name()='b" + n + "' and namespace-uri()='u" + n + "']";
    EXPECT_EQ(document->nodesForXPath(XPath(std::string_view(path))).size(), 1U) << n;
  }
}

TEST(DocumentBuilder, WritesOutWhatEntitiesStandFor) {
  EXPECT_EQ(merged({"<!DOCTYPE s [<!ENTITY e '&lt;E>'><!ENTITY f '1<x>2</x>&e;'>]>"
                    "<s><a b='&e;'>1&e;2<c>&e;</c>&f;</a></s>"}),
            "<r><a b=\"&lt;E&gt;\">1&lt;E&gt;2<c>&lt;E&gt;</c>12&lt;E&gt;</a></r>");
}

TEST(DocumentBuilder, DeclaresOnceWhatWasDeclaredAround) {
  EXPECT_EQ(merged({"<s xmlns:p='urn:p' xmlns:q='urn:q'><p:a/><b p:c=''><p:d/></b></s>",
                    "<s xmlns:p='urn:p'><p:a/></s>"}),
            "<r xmlns:p=\"urn:p\"><p:a/><b p:c=\"\"><p:d/></b><p:a/></r>");
}

TEST(DocumentBuilder, KeepsWhatAPartDeclaresItself) {
  const std::string part =
      "<a xmlns=\"urn:a\" xmlns:p=\"urn:p\" xmlns:q=\"urn:q\"><p:b/><c xmlns=\"\"><d/></c></a>";
  EXPECT_EQ(merged({"<s>" + part + "</s>"}), "<r>" + part + "</r>");
}

TEST(DocumentBuilder, RenamesAPrefixThatMeansTwoThings) {
  const std::string written =
      merged({"<s xmlns:p='urn:1'><p:a p:x=''/></s>", "<s xmlns:p='urn:2'><p:a p:x=''/></s>",
              "<s xmlns:p='urn:2'><p:a xmlns:ns-1='urn:3'><ns-1:b/></p:a></s>"});
  EXPECT_EQ(written,
            "<r xmlns:p=\"urn:1\" xmlns:ns-1=\"urn:2\" xmlns:ns-2=\"urn:3\"><p:a p:x=\"\"/>"
            "<ns-1:a ns-1:x=\"\"/><ns-1:a><ns-2:b/></ns-1:a></r>");
}

TEST(DocumentBuilder, GivesDefaultNamespacesFromAroundAPrefix) {
  EXPECT_EQ(merged({"<s xmlns='urn:s'><a b=''/></s>", "<s><a/></s>"}),
            "<r xmlns:ns-1=\"urn:s\"><ns-1:a b=\"\"/><a/></r>");
}

TEST(DocumentBuilder, DeclaresWhatNobodyDeclared) {
  EXPECT_EQ(merged({"<s><fw:a fw:b='' xsi:c=''/></s>", "<s><fw:a/></s>"}),
            "<r xmlns:fw=\"urn:undeclared:fw\" xmlns:xsi=\"urn:undeclared:xsi\">"
            "<fw:a fw:b=\"\" xsi:c=\"\"/><fw:a/></r>");
  EXPECT_EQ(merged({"<s xmlns:fw='urn:fw'><fw:a/></s>", "<s><fw:a/></s>"}),
            "<r xmlns:fw=\"urn:fw\"><fw:a/><fw:a/></r>")
      << "any namespace will do";
}

TEST(DocumentBuilder, MakesOddNamesOrdinary) {
  EXPECT_EQ(merged({"<s><:a/><a:/><a:1/><xmlns:a/><:/></s>"}),
            "<r><_a/><a_/><a_1/><xmlns_a/><_/></r>");
  EXPECT_EQ(merged({"<s><a::b/></s>"}), "<r xmlns:a=\"urn:undeclared:a\"><a:_b/></r>");
  EXPECT_EQ(merged({"<s><a:b:c d:e:f=''/></s>"}),
            "<r xmlns:a=\"urn:undeclared:a\" xmlns:d=\"urn:undeclared:d\"><a:b_c d:e_f=\"\"/></r>");
  EXPECT_EQ(merged({"<s><a :b='1' _b='2' xmlns:='3' xmlns:1='4' xml:lang='e' xmlns:p:q='5'/></s>"}),
            "<r><a _b=\"1\" xmlns_=\"3\" xmlns_1=\"4\" xml:lang=\"e\"/></r>");
  EXPECT_EQ(merged({"<s><a><?a:b c?><?xmlx e?></a></s>"}), "<r><a><?a_b c?><?xmlx e?></a></r>");
}

TEST(DocumentBuilder, KeepsOneOfTwoAttributesThatAreTheSame) {
  EXPECT_EQ(merged({"<s xmlns:p='u' xmlns:q='u'><a p:b='1' q:b='2' b='3' q:c='4'/></s>"}),
            "<r xmlns:p=\"u\" xmlns:q=\"u\"><a p:b=\"1\" b=\"3\" q:c=\"4\"/></r>");
  EXPECT_EQ(merged({"<s xmlns:q='urn:undeclared:p'><a p:b='1' q:b='2'/></s>"}),
            "<r xmlns:p=\"urn:undeclared:p\" xmlns:q=\"urn:undeclared:p\"><a p:b=\"1\"/></r>");
}

TEST(DocumentBuilder, WritesAddressesThatEveryReaderTakes) {
  for (const std::string address : {"u&lt;v", "a b", "&e;", "a&amp;b", "\"", "&#10;", "&none;"}) {
    merged({"<!DOCTYPE s [<!ENTITY e 'urn:e'><!ENTITY none ''>]><s xmlns:p='" + address +
            "'><p:a><p:b xmlns:p='&lt;" + address + "' xmlns='" + address + "'/></p:a></s>"});
  }
  EXPECT_EQ(merged({"<!DOCTYPE s [<!ENTITY e 'urn:e'>]><s xmlns:p='&e;&amp;x'><p:a/></s>"}),
            "<r xmlns:p=\"urn:e&amp;x\"><p:a/></r>");
}

// A document type may give elements declarations that could not be written out.
TEST(DocumentBuilder, TakesDeclarationsFromDocumentTypes) {
  for (const char* declaration :
       {"xmlns CDATA 'u'", "xmlns:p CDATA 'u'", "xmlns:p:q CDATA 'u'", "xmlns:xmlns CDATA 'u'",
        "xmlns:xml CDATA 'u'", "xmlns CDATA ''"}) {
    for (const char* part : {"<a/>", "<p:a/>", "<a p:b=''/>", "<xml:a/>", "<xmlns:a/>"}) {
      merged({std::string("<!DOCTYPE s [<!ATTLIST a ") + declaration + "><!ATTLIST s " +
              declaration + ">]><s>" + part + "</s>"});
    }
  }
}

// The parser admits 256 declarations in scope. What finds no room loses its namespace, but gets
// none that it has not had, and no name that it has not had without one.
TEST(DocumentBuilder, FindsRoomForNamespacesAsLongAsThereIsSome) {
  std::vector<std::string> documents;
  for (int d = 0; d < 3; ++d) {
    std::string declarations;
    std::string parts;
    for (int i = 0; i < 200; ++i) {
      const std::string prefix = "p" + std::to_string(d) + "_" + std::to_string(i);
      declarations += " xmlns:" + prefix + "='urn:" + prefix + "'";
      parts += "<" + prefix + ":a/><u" + prefix + ":a/>";
    }
    documents.push_back("<s" + declarations + ">" + parts + "<b xmlns='urn:b'/></s>");
  }
  const std::string written = merged(documents);
  const auto document = parseDocument(written);
  ASSERT_NE(document, nullptr) << "the parser takes it";
  EXPECT_EQ(document->nodesForXPath("/r/*").size(), 1203U);
  EXPECT_TRUE(document->nodesForXPath("/r/a").empty());
  EXPECT_TRUE(document->nodesForXPath("/r/b").empty());
  EXPECT_GT(document->nodesForXPath("/r/*[local-name()='a']").size(), 200U);
}

TEST(DocumentBuilder, FindsRoomBesideDeepDeclarations) {
  std::string open;
  std::string close;
  for (int i = 0; i < 120; ++i) {
    open += "<x" + std::to_string(i) + ":a xmlns:x" + std::to_string(i) + "='u' xmlns:y" +
            std::to_string(i) + "='u'>";
    close.insert(0, "</x" + std::to_string(i) + ":a>");
  }
  std::string undeclared;
  for (int i = 0; i < 300; ++i) {
    undeclared += "<u" + std::to_string(i) + ":a/>";
  }
  const std::string deep = "<s>" + open + close + "</s>";
  const std::string many = "<s>" + undeclared + "</s>";
  for (const auto& documents :
       {std::vector<std::string>{deep, many}, std::vector<std::string>{many, deep}}) {
    EXPECT_NE(parseDocument(merged(documents)), nullptr);
  }
}

TEST(DocumentBuilder, WritesNoMoreThanAFewTimesWhatItReads) {
  const std::string address(4000, 'u');
  const std::string parts = repeat("<a p:b=''><p:c/></a>", 5000);
  const std::string one = "<s xmlns:p='1" + address + "'>" + parts + "</s>";
  const std::string other = "<s xmlns:p='2" + address + "'>" + parts + "</s>";
  EXPECT_LT(merged({one, other}).size(), 2 * (one.size() + other.size()));
}

TEST(DocumentBuilder, TakesTimeLinearInWhatItReads) {
  const auto start = std::chrono::steady_clock::now();
  merged({"<!DOCTYPE s [<!ENTITY e 'E'>]><s><a>" + repeat("x&e;", 200'000) + "</a>" +
          repeat("<b c='&e;1'/>", 50'000) + "</s>"});
  merged({"<s xmlns:p='" + std::string(100'000, 'u') + "'>" + repeat("<p:a p:b=''/>", 50'000) +
          "</s>"});
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(DocumentBuilder, CopiesFromOneDocumentOnSeveralThreads) {
  const DDXMLElement source =
      root("<!DOCTYPE s [<!ENTITY e 'urn:e'>]><s xmlns:p='&e;'><p:a b='&e;'>&e;<c:d/></p:a></s>");
  std::vector<std::string> all(4);
  std::vector<std::thread> threads;
  for (std::string& each : all) {
    threads.emplace_back([&each, source] {
      DocumentBuilder builder("r");
      builder.root().appendCopy(source.firstChildElement());
      each = builder.write();
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(all, std::vector<std::string>(
                     4,
                     "<r xmlns:p=\"urn:e\" xmlns:c=\"urn:undeclared:c\"><p:a b=\"urn:e\">urn:e"
                     "<c:d/></p:a></r>"));
}

}  // namespace
}  // namespace tamzo::testing
