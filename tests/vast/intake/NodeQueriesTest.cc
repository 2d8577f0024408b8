// The small helpers by which every value is read from a document.

#include <gtest/gtest.h>

#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

const char* const kTwo = "<r><x><a>1</a><a>2</a><n>t<m>u</m>v</n><empty/></x><x><b>3</b></x></r>";

NodeList two() { return parseDocument(kTwo)->nodesForXPath("/r/x"); }

TEST(SingleValue, IsTheTextOfTheFirstMatchUnderTheFirstNode) {
  const NodeList nodes = two();
  EXPECT_EQ(TamzoVastAd::getSingleValueFromNode(nodes, "a"), Text("1"));
  EXPECT_EQ(TamzoVastAd::getSingleValueFromNode(nodes, "n"), Text("tuv"));
  EXPECT_EQ(TamzoVastAd::getSingleValueFromNode(nodes, "n/m"), Text("u"));
  EXPECT_EQ(TamzoVastAd::getSingleValueFromNode(nodes, "a[2]"), Text("2"));
}

TEST(SingleValue, IsEmptyTextAndNeverNilWhereNothingMatches) {
  const NodeList nodes = two();
  for (const char* path : {"b", "empty", "none", "a/none", "a[", "count(a)"}) {
    EXPECT_EQ(TamzoVastAd::getSingleValueFromNode(nodes, XPath(path)), Text("")) << path;
  }
  EXPECT_EQ(TamzoVastAd::getSingleValueFromNode(NodeList(), "a"), Text(""));
  EXPECT_EQ(TamzoVastAd::getSingleValueFromNode(NodeList::makeEmpty(), "a"), Text(""));
}

TEST(ArrayFromNode, IsWhatThePathFindsUnderTheFirstNode) {
  const NodeList nodes = two();
  EXPECT_EQ(TamzoVastAd::getArrayFromNode(nodes, "a").size(), 2U);
  const NodeList none = TamzoVastAd::getArrayFromNode(nodes, "b");
  EXPECT_FALSE(none.isNil());
  EXPECT_TRUE(none.empty());
  EXPECT_TRUE(TamzoVastAd::getArrayFromNode(nodes, "a[").isNil());
  EXPECT_TRUE(TamzoVastAd::getArrayFromNode(NodeList(), "a").isNil());
  EXPECT_TRUE(TamzoVastAd::getArrayFromNode(NodeList::makeEmpty(), "a").isNil());
}

TEST(NodeAsStringValue, IsTheFirstElementAtADottedPath) {
  const DDXMLElement root =
      rootOf("<r><a>1</a><a><b>2</b></a><c><d>3</d><d>4</d></c><e/></r>").at(0);
  EXPECT_EQ(TamzoVastAd::getNodeAsStringValue(root, "a").stringValue(), Text("1"));
  EXPECT_EQ(TamzoVastAd::getNodeAsStringValue(root, "c.d").stringValue(), Text("3"));
  EXPECT_EQ(TamzoVastAd::getNodeAsStringValue(root, "e").name(), Text("e"));
  for (const char* path : {"none", "c.none", "e.d", "d", "C.d"}) {
    EXPECT_FALSE(TamzoVastAd::getNodeAsStringValue(root, path)) << path;
  }
  EXPECT_FALSE(TamzoVastAd::getNodeAsStringValue(DDXMLElement(), "a"));
}

}  // namespace
}  // namespace tamzo::testing
