#include "tamzo/sdk/TamzoVastAdHelper.h"

#include <gtest/gtest.h>

#include "tamzo/vast/TamzoVastAd.h"
#include "tests/support/Documents.h"

namespace tamzo::testing {
namespace {

TEST(TamzoVastAdHelperTest, AKeyPathLeadsToTheFirstElement) {
  const DDXMLElement element = root(
      "<L><Icons id='1'/><Icons><Icon id='2'><C>c</C></Icon><Icon id='3'/></Icons>"
      "<\xC3\xA9><e\xC3\xA9-1/></\xC3\xA9></L>");
  const struct {
    const char* path;
    const char* xml;  // nullptr for nil
  } rows[] = {
      {"Icons", "<Icons id=\"1\"/>"},
      {"Icons.Icon.C", "<C>c</C>"},
      {"\xC3\xA9.e\xC3\xA9-1", "<e\xC3\xA9-1/>"},
      {"Icon", nullptr},
      {"L", nullptr},
      {"icons", nullptr},
      {"", nullptr},
      {".", nullptr},
      {"Icons.", nullptr},
      {".Icons", nullptr},
      {".L", nullptr},
      {"Icons..C", nullptr},
      {"Icons/Icon", nullptr},
      {"/L", nullptr},
      {"..", nullptr},
      {"*", nullptr},
      {"Icons.@id", nullptr},
      {"\xC3\xA9.*", nullptr},
      {"\xC3\xA9..e", nullptr},
      {"\xC3", nullptr},
      {"\xE2\x82\xAC", nullptr},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(TamzoVastAdHelper::getFirstElement(element, row.path).XMLString(), Text(row.xml))
        << row.path;
    EXPECT_EQ(TamzoVastAd::getNodeAsStringValue(element, row.path).XMLString(), Text(row.xml))
        << row.path;
    EXPECT_FALSE(TamzoVastAdHelper::getFirstElement(DDXMLElement(), row.path)) << row.path;
  }
}

}  // namespace
}  // namespace tamzo::testing
