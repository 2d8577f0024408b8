#include "tamzo/xml/NodeList.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"

namespace tamzo::testing {
namespace {

TEST(NodeListTest, TellsNilFromEmpty) {
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

TEST(NodeListTest, HoldsAnyNumberOfNodesAndIsCopiedWhole) {
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

TEST(NodeListTest, QueriesItsFirstNodeOnly) {
  const NodeList list = root("<r><a><b>1</b></a><a><b>2</b><c>3</c></a></r>").nodesForXPath("a");
  EXPECT_EQ(texts(list.nodesUnderFirst("b")), Texts{"1"});
  EXPECT_TRUE(list.nodesUnderFirst("c").empty());
  EXPECT_FALSE(list.firstMatch("c"));
}

TEST(NodeListTest, FirstMatchIsTheSameHoweverOftenItIsAsked) {
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

TEST(NodeListTest, AnIndexIsNotMistakenForThatOfAnotherList) {
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
