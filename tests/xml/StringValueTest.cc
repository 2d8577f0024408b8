#include "xml/StringValue.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>

#include "tests/support/Documents.h"
#include "tests/support/Growth.h"
#include "tests/support/Trees.h"

namespace tamzo::testing {
namespace {

std::shared_ptr<const XmlTree> treeOf(const Text& xml) {
  XmlError error;
  auto tree = parseXml(xml, &error);
  EXPECT_NE(tree, nullptr) << error.message << " in " << xml;
  return tree;
}

const xmlNode* rootOfTree(const std::shared_ptr<const XmlTree>& tree) {
  return xmlDocGetRootElement(tree->doc());
}

TEST(StringValueTest, EveryKindOfNodeHasItsText) {
  const auto tree = treeOf("<a b='v'>t<!--c--><?p i?><![CDATA[d]]><e>x</e></a>");
  const xmlNode* a = rootOfTree(tree);
  EXPECT_EQ(stringValueOf(a, tree), Text("tdx"));
  const xmlNode* node = a->children;
  for (const char* text : {"t", "c", "i", "d", "x"}) {
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(stringValueOf(node, tree), Text(text)) << node->type;
    node = node->next;
  }
  EXPECT_EQ(node, nullptr);
  EXPECT_EQ(stringValueOf(reinterpret_cast<const xmlNode*>(a->properties), tree), Text("v"));
  EXPECT_EQ(stringValueOf(tree->documentNode(), tree), Text("tdx"));
}

TEST(StringValueTest, WhereThereIsNoneItIsEmptyAndNotNil) {
  const auto tree = treeOf("<!DOCTYPE a><a b=''><c/><?p?><!----></a>");
  const xmlNode* a = rootOfTree(tree);
  EXPECT_EQ(stringValueOf(a, tree), Text(""));
  EXPECT_EQ(stringValueOf(reinterpret_cast<const xmlNode*>(a->properties), tree), Text(""));
  for (const xmlNode* node = a->children; node != nullptr; node = node->next) {
    EXPECT_EQ(stringValueOf(node, tree), Text("")) << node->type;
  }
  const auto* type = reinterpret_cast<const xmlNode*>(tree->doc()->intSubset);
  EXPECT_EQ(stringValueOf(type, tree), Text("")) << "a document type has no text";
}

TEST(StringValueTest, TextInOnePieceIsSharedWithTheTree) {
  for (const char* xml : {"<a>one text</a>", "<a><![CDATA[one text]]></a>"}) {
    Text text;
    {
      const auto tree = treeOf(xml);
      const xmlNode* a = rootOfTree(tree);
      text = stringValueOf(a, tree);
      EXPECT_EQ(text.view().data(), asChars(a->children->content)) << xml;
      EXPECT_EQ(tree.use_count(), 2) << "the text holds the tree";
    }
    EXPECT_EQ(text, Text("one text")) << xml;
  }
}

TEST(StringValueTest, TextInPiecesIsPutTogetherAndLetsTheTreeGo) {
  for (const char* xml : {"<a>one<!----> text</a>", "<a><b>one text</b></a>"}) {
    const auto tree = treeOf(xml);
    EXPECT_EQ(stringValueOf(rootOfTree(tree), tree), Text("one text")) << xml;
    EXPECT_EQ(tree.use_count(), 1) << xml;
  }
}

TEST(StringValueTest, WhatStandsBehindANodeIsNoneOfItsText) {
  const auto tree = treeOf("<a><b>1<c>2</c></b>3<b/>4</a>");
  const xmlNode* first = rootOfTree(tree)->children;
  EXPECT_EQ(stringValueOf(first, tree), Text("12"));
  EXPECT_EQ(stringValueOf(first->next->next, tree), Text(""));
}

TEST(StringValueTest, AnEntityReferenceStandsForItsText) {
  const auto tree = treeOf(
      "<!DOCTYPE a [<!ENTITY e '1&amp;'><!ENTITY f '&e;2'><!ENTITY g '<b>3</b>'>]>"
      "<a>&e;&f;&g;</a>");
  const xmlNode* reference = rootOfTree(tree)->children;
  for (const char* text : {"1&", "1&2", "3"}) {
    ASSERT_NE(reference, nullptr);
    ASSERT_EQ(reference->type, XML_ENTITY_REF_NODE);
    EXPECT_EQ(entityTextOf(reference), text);
    reference = reference->next;
  }
  EXPECT_EQ(stringValueOf(rootOfTree(tree), tree), Text("1&1&23"));
}

TEST(StringValueTest, ManyPiecesAreReadInOneGo) {
  for (const char* piece : {"x<!---->", "<![CDATA[x]]>", "x<b/>", "<b>x</b>"}) {
    EXPECT_TRUE(growsLinearly(500, [piece](std::size_t size) {
      const auto tree = treeOf("<a>" + repeat(piece, static_cast<int>(size)) + "</a>");
      return [tree, size] { EXPECT_EQ(stringValueOf(rootOfTree(tree), tree).view().size(), size); };
    })) << piece;
  }
}

}  // namespace
}  // namespace tamzo::testing
