#include "xml/XmlSerializer.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <string>
#include <thread>
#include <vector>

#include "tamzo/base/Text.h"
#include "tests/support/Trees.h"
#include "xml/XmlTree.h"

namespace tamzo::testing {
namespace {

std::string written(const std::string& xml) {
  const auto tree = parseXml(Text(xml), nullptr);
  return serializeXml(xmlDocGetRootElement(tree->doc()));
}

TEST(XmlSerializer, WritesWhatItReads) {
  for (const std::string xml :
       {"<a/>", "<a>text</a>", "<a b=\"1\" c=\"&lt;&quot;'&#10;\"/>", "<a>&lt;&gt;&amp;&#13;</a>",
        "<a> <b/>\n<c>x</c> </a>", "<a><![CDATA[<&]]><!--c--><?p i?></a>",
        "<x:a xmlns:x=\"urn:x\" x:b=\"1\"/>", "<a xmlns=\"urn:a\"><b xmlns=\"\"/></a>",
        "<\xC3\xA9>\xE2\x82\xAC\xF0\x9F\x98\x80</\xC3\xA9>"}) {
    EXPECT_EQ(written(xml), xml);
  }
}

TEST(XmlSerializer, KeepsReferencesToEntities) {
  EXPECT_EQ(written("<!DOCTYPE a [<!ENTITY e 'E'>]><a b='&e;'>1&e;2</a>"),
            "<a b=\"&e;\">1&e;2</a>");
}

// Elements that are a name and a text take a short cut, which a document type rules out.
TEST(XmlSerializer, WritesPlainElementsAsAllOthers) {
  for (const std::string xml : {"<a/>", "<a>text</a>", "<a> \n\t</a>", "<a>a&gt;b</a>",
                                "<a>a&lt;b&amp;c</a>", "<a>&#13;</a>", "<a>\"'</a>", "<a>x<b/></a>",
                                "<a><![CDATA[x]]></a>", "<a xmlns='u'>x</a>", "<a b=''>x</a>"}) {
    EXPECT_EQ(written(xml), written("<!DOCTYPE a>" + xml)) << xml;
  }
}

TEST(XmlSerializer, WritesOneElementOfMany) {
  const auto tree = parseXml(Text("<a>1<b>2<c/></b>3</a>"), nullptr);
  const xmlNode* b = xmlFirstElementChild(xmlDocGetRootElement(tree->doc()));
  EXPECT_EQ(serializeXml(b), "<b>2<c/></b>");
  EXPECT_EQ(serializeXml(b->children), "2");
}

// Longer than any of libxml2's buffers.
TEST(XmlSerializer, WritesLongTexts) {
  const std::string text(300'000, 'x');
  const std::string xml = "<a b=\"" + text + "\">" + text + "</a>";
  EXPECT_EQ(written(xml), xml);
}

TEST(XmlSerializer, WritesOneTreeOnSeveralThreads) {
  const std::string xml = "<a><b c=\"d\">e</b><b c=\"d\">e</b></a>";
  const auto tree = parseXml(Text(xml), nullptr);
  std::vector<std::string> all(4);
  std::vector<std::thread> threads;
  for (std::string& each : all) {
    threads.emplace_back([&] { each = serializeXml(xmlDocGetRootElement(tree->doc())); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(all, std::vector<std::string>(4, xml));
}

}  // namespace
}  // namespace tamzo::testing
