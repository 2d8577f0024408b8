#include "tamzo/xml/NodeList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
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

TEST(NodeListTest, ThatIsAssignedToAsksItsNewNode) {
  NodeList list = NodeList::of(root("<r><a>1</a></r>"));
  EXPECT_EQ(list.firstMatch("a").stringValue(), Text("1"));
  const NodeList copy = list;
  list = NodeList::of(root("<r><b/><a>2</a></r>"));
  EXPECT_EQ(list.firstMatch("a").stringValue(), Text("2"));
  EXPECT_EQ(copy.firstMatch("a").stringValue(), Text("1"));
}

TEST(NodeListTest, IsNilOnceItsNodesWereMovedAway) {
  NodeList list = root("<r><a>1</a><a>2</a><a>3</a><a>4</a><a>5</a></r>").nodesForXPath("a");
  const NodeList taken = std::move(list);
  EXPECT_EQ(texts(taken), (Texts{"1", "2", "3", "4", "5"}));
  EXPECT_TRUE(list.isNil());  // NOLINT(bugprone-use-after-move)
  EXPECT_TRUE(list.empty());
  EXPECT_FALSE(list.firstMatch("a"));
  NodeList& same = list;
  list = taken;
  list = std::move(same);
  EXPECT_EQ(list.size(), 5U) << "moved into itself";
}

TEST(NodeListTest, GoesIntoTheStandardLibrarysAlgorithms) {
  static_assert(std::forward_iterator<NodeList::Iterator>);
  static_assert(std::ranges::forward_range<const NodeList>);
  const NodeList list = root("<r><a>1</a><a>2</a><a>3</a></r>").nodesForXPath("a");
  EXPECT_EQ(std::count_if(list.begin(), list.end(),
                          [](const DDXMLElement& a) { return a.stringValue() != "2"; }),
            2);
  EXPECT_EQ(std::find(list.begin(), list.end(), list[1]), std::next(list.begin()));
  EXPECT_EQ(std::vector<DDXMLElement>(list.begin(), list.end()).size(), 3U);
#ifdef __cpp_lib_ranges
  const auto isTwo = [](const DDXMLElement& a) { return a.stringValue() == "2"; };
  EXPECT_EQ(std::ranges::find_if(list, isTwo), std::next(list.begin()));
  EXPECT_EQ(std::ranges::distance(list), 3);
  EXPECT_TRUE(std::ranges::any_of(list, isTwo));
#endif
  EXPECT_EQ(list[0].stringValue(), "1");
  EXPECT_THROW(static_cast<void>(list[3]), std::out_of_range);
}

}  // namespace
}  // namespace tamzo::testing
