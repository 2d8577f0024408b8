#include "xml/XPathQuery.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/Growth.h"
#include "tests/support/Trees.h"

namespace tamzo::testing {
namespace {

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
  const auto document = documentOf(kTree);
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

TEST(Query, ThatSucceedsClearsTheErrorOfTheLastOne) {
  const auto document = documentOf(kTree);
  const DDXMLElement r = document->rootElement();
  const NodeList list = NodeList::of(r);
  XmlError error;
  const auto fail = [&] {
    EXPECT_TRUE(r.nodesForXPath("a[", &error).isNil());
    EXPECT_NE(error.message, "");
  };
  fail();
  EXPECT_FALSE(r.nodesForXPath("//b", &error).empty());
  EXPECT_EQ(error.message, "");
  fail();
  EXPECT_FALSE(r.nodesForXPath("a", &error).empty());
  EXPECT_EQ(error.message, "") << "a path of names cannot fail";
  fail();
  EXPECT_TRUE(document->nodesForXPath("/none", &error).empty());
  EXPECT_EQ(error.message, "") << "nothing found is no error";
  fail();
  EXPECT_FALSE(list.nodesUnderFirst("a", &error).empty());
  EXPECT_EQ(error.message, "");
  fail();
  EXPECT_TRUE(NodeList().nodesUnderFirst("a[", &error).isNil());
  EXPECT_EQ(error.message, "") << "nothing was asked";
  fail();
  EXPECT_TRUE(DDXMLElement().nodesForXPath("a[", &error).isNil());
  EXPECT_EQ(error.message, "");
}

TEST(Query, MayBeMadeOfTheErrorsOwnText) {
  const DDXMLElement r = root(kTree);
  XmlError error{"a/b"};
  EXPECT_EQ(texts(r.nodesForXPath(XPath(error.message), &error)), (Texts{"1", "2", "4"}));
  error.message = "//a[";
  EXPECT_TRUE(r.nodesForXPath(XPath(error.message), &error).isNil());
  EXPECT_NE(error.message, "//a[");
}

TEST(Query, ThatTakesTooManyStepsIsGivenUp) {
  const DDXMLElement r = root("<r>" + repeat("<a/>", 1000) + "</r>");
  XmlError error;
  // Each of a thousand elements is asked for those of which each is asked for all.
  EXPECT_TRUE(r.nodesForXPath("//a[count(//a[count(//a) > 0]) > 0]", &error).isNil());
  EXPECT_NE(error.message, "");
  EXPECT_EQ(r.nodesForXPath("//a[position() > 0]").size(), 1000U) << "the next one is not";
}

TEST(Query, EndsSoonOnALargeDocument) {
  // Found together, put into order, or compared pair by pair, by libxml2, these take minutes.
  const std::string documents[] = {
      "<r>" + repeat("<a/>", 32'000) + "</r>", "<r>" + repeat("<a><b/></a>", 16'000) + "</r>",
      "<r>" + repeat("x<!---->", 32'000) + "</r>",
      "<r>" + repeat("<a b='1' c='2'/>", 16'000) + "</r>",
      "<r><a b='" + repeat("x", 300'000) + "' c='" + repeat("x", 200'000) + "y'/></r>"};
  for (const std::string& xml : documents) {
    const DDXMLElement r = root(Text(xml));
    for (const char* path :
         {"//a[last()]/preceding::*", "//a/preceding::*", "//a/following-sibling::*", "//b/..",
          "//a/..", "//a//b", "//text()", "//comment()/preceding::node()", "//a | //b",
          "//node()[last()]/preceding-sibling::node()", "//a[@b=//@c]", "//a[.=//a]", "a/@b = a/@c",
          "//a[contains(/, 'x')]", "//a[contains(@b, @c)]", "id(//a)"}) {
      const double begin = threadSeconds();
      XmlError error;
      const NodeList found = r.nodesForXPath(XPath(std::string_view(path)), &error);
      EXPECT_EQ(found.isNil(), !error.message.empty()) << path;
      EXPECT_LT(threadSeconds() - begin, 10.0) << path << " of " << xml.substr(0, 20);
    }
    for (const char* path : {"//a", "//a[last()]", "//a[@b='1']", "//a/b", "//@b", ".//a[1]"}) {
      EXPECT_FALSE(r.nodesForXPath(XPath(std::string_view(path))).isNil()) << path;
    }
  }
}

TEST(Query, SaysThatItTakesTooManySteps) {
  XmlError error;
  const DDXMLElement r = root(Text("<r>" + repeat("<a/>", 32'000) + "</r>"));
  EXPECT_TRUE(r.nodesForXPath("//a/preceding::*", &error).isNil());
  EXPECT_EQ(error.message, "the expression takes too many steps on a document of this size");
}

TEST(Query, FindsWithEveryAxisInAnOrdinaryDocument) {
  const DDXMLElement r = root(Text("<r>" + repeat("<a>x<b/></a>", 200) + "</r>"));
  EXPECT_EQ(r.nodesForXPath("//b/..").size(), 200U);
  EXPECT_EQ(r.nodesForXPath("//a/preceding::*").size(), 398U);
  EXPECT_EQ(r.nodesForXPath("//a//b | //a").size(), 400U);
  EXPECT_EQ(r.nodesForXPath("//a/text()").size(), 200U);
  EXPECT_EQ(r.nodesForXPath("//b/following-sibling::* | //a[. = //a]").size(), 200U);
}

TEST(Query, LeavesOutNamespacesWhichAreNoNodesOfTheTree) {
  const DDXMLElement r = root("<r xmlns:x='urn:x'><a x:i='1'/></r>");
  const NodeList found = r.nodesForXPath("namespace::* | a");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found.at(0).name(), Text("a"));
  const NodeList none = r.nodesForXPath("namespace::*");
  EXPECT_TRUE(none.empty());
  EXPECT_FALSE(none.isNil());
}

TEST(Query, EndsAtNoNul) {
  const DDXMLElement r = root("<r><a/></r>");
  using namespace std::string_view_literals;
  for (const std::string_view path : {"a\0"sv, "\0"sv, "a\0[1]"sv, "a[1]\0"sv}) {
    XmlError error;
    EXPECT_TRUE(r.nodesForXPath(XPath(path), &error).isNil());
    EXPECT_NE(error.message, "");
  }
}

// The first one prepares the document, which the others must not see half done.
TEST(Query, OfAnyKindMayBeMadeByManyThreadsAtOnce) {
  for (int round = 0; round < 20; ++round) {
    const DDXMLElement r = root(kTree);
    std::vector<std::thread> threads;
    std::vector<Texts> found(8);
    for (Texts& each : found) {
      threads.emplace_back([&r, &each] { each = texts(r.nodesForXPath(XPath("//b | //c"))); });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    for (const Texts& each : found) {
      EXPECT_EQ(each, (Texts{"1", "x", "2", "3", "4", "5", "6"}));
    }
  }
}

TEST(WalkChildPath, StopsAtTheNodeThatSatisfies) {
  const auto tree = parseXml("<r><a><b/></a><a><b/><b/></a></r>", nullptr);
  ASSERT_NE(tree, nullptr);
  xmlNode* root = xmlDocGetRootElement(tree->doc());
  for (const int enough : {1, 2, 3, 4}) {
    int seen = 0;
    const auto visit = [&](xmlNode* node) {
      EXPECT_TRUE(isElementNamed(node, "b"));
      return ++seen == enough;
    };
    EXPECT_EQ(walkChildPath(root, "a/b", visit), enough <= 3) << enough;
    EXPECT_EQ(seen, std::min(enough, 3));
  }
}

TEST(WalkChildPath, AsksNothingOfANodeWithoutChildren) {
  const auto tree = parseXml("<r/>", nullptr);
  const auto never = [](xmlNode*) { return true; };
  EXPECT_FALSE(walkChildPath(xmlDocGetRootElement(tree->doc()), "a", never));
  EXPECT_FALSE(walkChildPath(xmlDocGetRootElement(tree->doc()), "a/b", never));
  EXPECT_TRUE(walkChildPath(tree->documentNode(), "r", never));
}

}  // namespace
}  // namespace tamzo::testing
