#include "tamzo/xml/XPath.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace tamzo::testing {
namespace {

// A literal is told apart when the program is compiled.
static_assert(XPath("Icons/Icon").isChildPath());
static_assert(!XPath("Icons/Icon[1]").isChildPath());

TEST(XPathTest, TellsPathsOfPlainNamesFromAnythingElse) {
  const struct {
    std::string_view text;
    bool isChildPath;
    bool isAbsolute;
    bool isSingleName;
    std::string_view steps;
  } rows[] = {
      {"a", true, false, true, "a"},
      {"Abc_1-2.3", true, false, true, "Abc_1-2.3"},
      {"_", true, false, true, "_"},
      {"a/b", true, false, false, "a/b"},
      {"a/b/c", true, false, false, "a/b/c"},
      {"/a", true, true, false, "a"},
      {"/VAST/Ad", true, true, false, "VAST/Ad"},
      {"", false, false, false, ""},
      {"/", false, true, false, ""},
      {"//a", false, true, false, "/a"},
      {"a/", false, false, false, "a/"},
      {"a//b", false, false, false, "a//b"},
      {".", false, false, false, "."},
      {"..", false, false, false, ".."},
      {"1a", false, false, false, "1a"},
      {"-a", false, false, false, "-a"},
      {"a/1", false, false, false, "a/1"},
      {"@a", false, false, false, "@a"},
      {"*", false, false, false, "*"},
      {"a b", false, false, false, "a b"},
      {" a", false, false, false, " a"},
      {"x:a", false, false, false, "x:a"},
      {"a[1]", false, false, false, "a[1]"},
      {"a|b", false, false, false, "a|b"},
      {"text()", false, false, false, "text()"},
      {"\xC3\xA4", false, false, false, "\xC3\xA4"},
      {std::string_view("a\0", 2), false, false, false, std::string_view("a\0", 2)},
  };
  for (const auto& row : rows) {
    const XPath path(row.text);
    EXPECT_EQ(path.isChildPath(), row.isChildPath) << row.text;
    EXPECT_EQ(path.isAbsolute(), row.isAbsolute) << row.text;
    EXPECT_EQ(path.isSingleName(), row.isSingleName) << row.text;
    EXPECT_EQ(path.isBelowContext(), row.isChildPath && !row.isAbsolute) << row.text;
    EXPECT_EQ(path.steps(), row.steps) << row.text;
    EXPECT_EQ(path.text(), row.text);
  }
}

TEST(XPathTest, TheFirstStepEndsAtASlash) {
  EXPECT_EQ(XPath::firstStep("a/b/c"), "a");
  EXPECT_EQ(XPath::firstStep("a"), "a");
  EXPECT_EQ(XPath::firstStep(""), "");
  EXPECT_EQ(XPath::firstStep("/a"), "");
}

}  // namespace
}  // namespace tamzo::testing
