#include "tamzo/xml/XPath.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <type_traits>

#include "tamzo/base/Text.h"

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
    std::string_view steps;
  } rows[] = {
      {"a", true, false, "a"},
      {"Abc_1-2.3", true, false, "Abc_1-2.3"},
      {"_", true, false, "_"},
      {"a/b", true, false, "a/b"},
      {"a/b/c", true, false, "a/b/c"},
      {"/a", true, true, "a"},
      {"/VAST/Ad", true, true, "VAST/Ad"},
      {"", false, false, ""},
      {"/", false, true, ""},
      {"//a", false, true, "/a"},
      {"a/", false, false, "a/"},
      {"a//b", false, false, "a//b"},
      {".", false, false, "."},
      {"..", false, false, ".."},
      {"1a", false, false, "1a"},
      {"-a", false, false, "-a"},
      {"a/1", false, false, "a/1"},
      {"@a", false, false, "@a"},
      {"*", false, false, "*"},
      {"a b", false, false, "a b"},
      {" a", false, false, " a"},
      {"x:a", false, false, "x:a"},
      {"a[1]", false, false, "a[1]"},
      {"a|b", false, false, "a|b"},
      {"text()", false, false, "text()"},
      {"\xC3\xA4", false, false, "\xC3\xA4"},
      {std::string_view("a\0", 2), false, false, std::string_view("a\0", 2)},
  };
  for (const auto& row : rows) {
    const XPath path(row.text);
    EXPECT_EQ(path.isChildPath(), row.isChildPath) << row.text;
    EXPECT_EQ(path.isAbsolute(), row.isAbsolute) << row.text;
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

// One of a temporary would view what is gone.
static_assert(std::is_constructible_v<XPath, std::string_view>);
static_assert(std::is_constructible_v<XPath, const std::string&>);
static_assert(std::is_constructible_v<XPath, std::string&>);
static_assert(std::is_constructible_v<XPath, const Text&>);
static_assert(std::is_constructible_v<XPath, const char*>);
static_assert(!std::is_constructible_v<XPath, std::string>);
static_assert(!std::is_constructible_v<XPath, const std::string>);
static_assert(!std::is_constructible_v<XPath, Text>);
static_assert(!std::is_convertible_v<std::string_view, XPath>);
static_assert(!std::is_convertible_v<const char*, XPath>);

}  // namespace
}  // namespace tamzo::testing
