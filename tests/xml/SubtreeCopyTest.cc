// What names and namespaces become, tests/xml/DocumentBuilderTest.cc shows.

#include "xml/SubtreeCopy.h"

#include <gtest/gtest.h>
#include <libxml/tree.h>

#include <string>

#include "tamzo/base/Text.h"
#include "tests/support/Trees.h"
#include "xml/XmlSerializer.h"
#include "xml/XmlTree.h"

namespace tamzo::testing {
namespace {

const xmlChar* asXml(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

class SubtreeCopyTest : public ::testing::Test {
 protected:
  SubtreeCopyTest() : tree_(xmlNewDoc(asXml("1.0"))) {
    tree_.doc()->dict = xmlDictCreate();
    root_ = xmlNewDocNode(tree_.doc(), nullptr, asXml("r"), nullptr);
    linkChild(tree_.documentNode(), root_);
  }

  XmlTree tree_;
  xmlNode* root_ = nullptr;
};

TEST_F(SubtreeCopyTest, TakesATagAPartOrAllButOneChild) {
  const auto source = parseXml(Text("<a b='1'>t<c/><d/></a>"), nullptr);
  const xmlNode* a = xmlDocGetRootElement(source->doc());
  SubtreeCopy copy(root_);
  copy.append(copy.appendTag(root_, a), a->children->next);
  copy.appendChildren(root_, a, a->children->next);
  copy.append(root_, a);
  EXPECT_EQ(serializeXml(root_), "<r><a b=\"1\"><c/></a>t<d/><a b=\"1\">t<c/><d/></a></r>");
}

TEST_F(SubtreeCopyTest, LeavesTheSourceAndItsDictionaryAlone) {
  const std::string xml = "<!DOCTYPE a [<!ENTITY e 'x'>]><a b='&e;'>&e;<u:c :d='1'/></a>";
  const auto source = parseXml(Text(xml), nullptr);
  const xmlNode* a = xmlDocGetRootElement(source->doc());
  const std::string before = serializeXml(a);
  const int names = xmlDictSize(source->doc()->dict);
  SubtreeCopy(root_).append(root_, a);
  EXPECT_EQ(serializeXml(a), before);
  EXPECT_EQ(xmlDictSize(source->doc()->dict), names);
  EXPECT_NE(serializeXml(root_).find("<a b=\"x\">x<u:c _d=\"1\"/></a>"), std::string::npos);
}

TEST_F(SubtreeCopyTest, IsAsDeepAsAnyDocument) {
  std::string open;
  std::string close;
  for (int i = 0; i < 255; ++i) {
    open += "<a>";
    close += "</a>";
  }
  const auto source = parseXml(Text("<s>" + open + "x" + close + "</s>"), nullptr);
  SubtreeCopy(root_).append(root_, xmlDocGetRootElement(source->doc())->children);
  EXPECT_EQ(serializeXml(root_), "<r>" + open + "x" + close + "</r>");
}

}  // namespace
}  // namespace tamzo::testing
