#include "xml/XmlTree.h"

#include <gtest/gtest.h>

#include <memory>
#include <string_view>

#include "tests/support/Trees.h"

namespace tamzo::testing {
namespace {

const xmlChar* chars(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

TEST(XmlTreeTest, ATextEqualsANameInEveryCharacterAndInLength) {
  EXPECT_TRUE(isText(chars(""), ""));
  EXPECT_TRUE(isText(chars("a"), "a"));
  EXPECT_TRUE(isText(chars("Icon"), "Icon"));
  EXPECT_TRUE(isText(chars("\xC3\xA4"), "\xC3\xA4"));
  EXPECT_TRUE(isText(chars("Icon"), std::string_view("Icons").substr(0, 4)));
  EXPECT_FALSE(isText(chars("Icon"), ""));
  EXPECT_FALSE(isText(chars(""), "Icon"));
  EXPECT_FALSE(isText(chars("Icon"), "Icons"));
  EXPECT_FALSE(isText(chars("Icons"), "Icon"));
  EXPECT_FALSE(isText(chars("Icon"), "icon"));
  EXPECT_FALSE(isText(chars("Icon"), "Icom"));
}

TEST(XmlTreeTest, AnElementOfANameIsOneWithoutANamespace) {
  const auto tree = parseXml(
      "<r xmlns:x='urn:x'><a/><x:a/><a xmlns='urn:y'/>a<!--a--><?a?><b a='a'/></r>", nullptr);
  ASSERT_NE(tree, nullptr);
  const xmlNode* root = xmlDocGetRootElement(tree->doc());
  int elements = 0;
  for (const xmlNode* node = root->children; node != nullptr; node = node->next) {
    EXPECT_EQ(isElementNamed(node, "a"), node == root->children) << node->type;
    ++elements;
  }
  EXPECT_EQ(elements, 7);
  const auto* attribute = reinterpret_cast<const xmlNode*>(root->last->properties);
  EXPECT_FALSE(isElementNamed(attribute, "a"));
  EXPECT_FALSE(isElementNamed(tree->documentNode(), "r"));
  EXPECT_EQ(tree->documentNode()->children, root);
}

}  // namespace
}  // namespace tamzo::testing
