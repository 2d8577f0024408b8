#include "xml/NamespaceDeclarations.h"

#include <gtest/gtest.h>
#include <libxml/tree.h>

#include <string>

#include "tamzo/base/Text.h"
#include "tests/support/Trees.h"
#include "xml/XmlTree.h"

namespace tamzo::testing {
namespace {

class NamespaceDeclarationsTest : public ::testing::Test {
 protected:
  NamespaceDeclarationsTest()
      : tree_(xmlNewDoc(reinterpret_cast<const xmlChar*>("1.0"))),
        root_(xmlNewChild(tree_.documentNode(), nullptr, reinterpret_cast<const xmlChar*>("r"),
                          nullptr)),
        declarations_(root_) {}

  // The root of a document that stays.
  const xmlNode* parse(const std::string& xml) {
    sources_.push_back(parseXml(Text(xml), nullptr));
    return xmlDocGetRootElement(sources_.back()->doc());
  }
  xmlNs* find(const xmlNs* ns) { return declarations_.find(ns, sources_.back()->doc()); }
  static std::string show(const xmlNs* ns) {
    return ns == nullptr ? "none"
                         : std::string(ns->prefix == nullptr ? "" : asChars(ns->prefix)) + "=" +
                               asChars(ns->href);
  }

  std::vector<std::shared_ptr<const XmlTree>> sources_;
  XmlTree tree_;
  xmlNode* root_;
  NamespaceDeclarations declarations_;
};

TEST_F(NamespaceDeclarationsTest, WhatStandsAroundIsDeclaredOnTheRootOnce) {
  const xmlNode* a = parse("<a xmlns:p='urn:p'/>");
  xmlNs* declared = find(a->nsDef);
  EXPECT_EQ(show(declared), "p=urn:p");
  EXPECT_EQ(find(a->nsDef), declared);
  EXPECT_EQ(find(parse("<b xmlns:p='urn:p'/>")->nsDef), declared);
  EXPECT_EQ(root_->nsDef, declared);
  EXPECT_EQ(declared->next, nullptr);
}

TEST_F(NamespaceDeclarationsTest, WhatAPartDeclaresIsInScopeThere) {
  const xmlNode* a = parse("<a xmlns:p='urn:p' xmlns='urn:d'/>");
  xmlNode* copy = xmlNewChild(root_, nullptr, reinterpret_cast<const xmlChar*>("copy"), nullptr);
  const std::size_t scope = declarations_.enter(a, copy);
  EXPECT_EQ(find(a->nsDef), copy->nsDef);
  EXPECT_EQ(show(copy->nsDef), "p=urn:p");
  EXPECT_EQ(show(find(a->nsDef->next)), "=urn:d");
  EXPECT_EQ(root_->nsDef, nullptr);
  declarations_.leave(scope);
  EXPECT_EQ(find(a->nsDef), root_->nsDef) << "out of scope, it stands around";
}

TEST_F(NamespaceDeclarationsTest, APrefixStandsForOneThingOnTheRoot) {
  EXPECT_EQ(show(find(parse("<a xmlns:p='urn:1'/>")->nsDef)), "p=urn:1");
  EXPECT_EQ(show(find(parse("<a xmlns:p='urn:2'/>")->nsDef)), "ns-1=urn:2");
  EXPECT_EQ(show(find(parse("<a xmlns:q='urn:2'/>")->nsDef)), "q=urn:2");
  EXPECT_EQ(show(find(parse("<a xmlns:p='urn:2'/>")->nsDef)), "ns-1=urn:2");
  EXPECT_EQ(show(find(parse("<a xmlns='urn:3'/>")->nsDef)), "ns-2=urn:3");
}

TEST_F(NamespaceDeclarationsTest, PrefixesThatNobodyDeclaredAreDeclared) {
  EXPECT_EQ(show(declarations_.findUndeclared("fw")), "fw=urn:undeclared:fw");
  EXPECT_EQ(declarations_.findUndeclared("fw"), root_->nsDef);
  for (const char* prefix : {"", "xml", "xmlns", "1", "a:b"}) {
    EXPECT_EQ(declarations_.findUndeclared(prefix), nullptr) << prefix;
  }
}

TEST_F(NamespaceDeclarationsTest, ThereIsRoomForAsManyAsTheParserAdmits) {
  for (int i = 0; i < 256; ++i) {
    EXPECT_NE(declarations_.findUndeclared("p" + std::to_string(i)), nullptr) << i;
  }
  EXPECT_EQ(declarations_.findUndeclared("one_more"), nullptr);
  const xmlNode* a = parse("<a xmlns:q='urn:q'/>");
  EXPECT_EQ(find(a->nsDef), nullptr);
  declarations_.enter(a, root_);
  EXPECT_EQ(find(a->nsDef), nullptr);
}

}  // namespace
}  // namespace tamzo::testing
