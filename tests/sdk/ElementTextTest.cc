#include "sdk/ElementText.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/support/Documents.h"

namespace tamzo::testing {
namespace {

TEST(ElementTextTest, ATrimmedTextIsAPartOfTheElements) {
  EXPECT_TRUE(trimmedText(DDXMLElement()).isNil());
  EXPECT_EQ(trimmedText(root("<a/>")), Text(""));
  EXPECT_EQ(trimmedText(root("<a> \n\xC2\xA0</a>")), Text(""));
  EXPECT_EQ(trimmedText(root("<a> <![CDATA[ a b ]]>\n</a>")), Text("a b"));
  const DDXMLElement element = root("<a>\n  a long text, which is not copied  </a>");
  EXPECT_EQ(trimmedText(element).view().data(), element.stringValue().view().data() + 3);
}

TEST(ElementTextTest, AnAbsentAttributeIsNotAnEmptyOne) {
  const DDXMLElement element = root("<a empty='' number=' 300px' text='wide' flag='true' no='0'/>");
  EXPECT_EQ(integerAttribute(element, "absent"), std::nullopt);
  EXPECT_EQ(integerAttribute(element, "empty"), 0);
  EXPECT_EQ(integerAttribute(element, "number"), 300);
  EXPECT_EQ(integerAttribute(element, "text"), 0);
  EXPECT_EQ(boolAttribute(element, "absent"), std::nullopt);
  EXPECT_EQ(boolAttribute(element, "empty"), false);
  EXPECT_EQ(boolAttribute(element, "flag"), true);
  EXPECT_EQ(boolAttribute(element, "number"), true);
  EXPECT_EQ(boolAttribute(element, "no"), false);
  EXPECT_EQ(integerAttribute(DDXMLElement(), "number"), std::nullopt);
  EXPECT_EQ(boolAttribute(DDXMLElement(), "flag"), std::nullopt);
}

}  // namespace
}  // namespace tamzo::testing
