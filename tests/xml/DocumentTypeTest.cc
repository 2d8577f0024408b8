#include "xml/DocumentType.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace tamzo::testing {
namespace {

TEST(DocumentTypeTest, CountsTheDeclarationsOfStructureFromBracketToBracket) {
  const std::vector<std::pair<std::string, std::string>> rows{
      // a subset, and what of it counts
      {"]>", ""},
      {"", ""},
      {" \n ]>", ""},
      {"<!ELEMENT a ANY>]>", "<!ELEMENT a ANY>"},
      {"<!ATTLIST a b CDATA #IMPLIED>]>", "<!ATTLIST a b CDATA #IMPLIED>"},
      {"<!NOTATION n SYSTEM 'x'>]>", "<!NOTATION n SYSTEM 'x'>"},
      {" <!ELEMENT a ANY>\n<!ELEMENT b ANY> ]>", "<!ELEMENT a ANY><!ELEMENT b ANY>"},
      {"<!ENTITY e 'x'>]>", ""},
      {"<!ENTITY e 'x'><!ELEMENT a ANY>]>", "<!ELEMENT a ANY>"},
      // ends in quotes are none
      {"<!ATTLIST a b CDATA '>]>'>]>", "<!ATTLIST a b CDATA '>]>'>"},
      {"<!ATTLIST a b CDATA \"'>\">]>", "<!ATTLIST a b CDATA \"'>\">"},
      {"<!ENTITY e '<!ELEMENT a ANY>'>]>", ""},
      {"<!ENTITY e ']>'><!ELEMENT a ANY>]>", "<!ELEMENT a ANY>"},
      // remarks declare nothing and end nothing
      {"<!-- <!ELEMENT a ANY> -->]>", ""},
      {"<!-- ]> --><!ELEMENT a ANY>]>", "<!ELEMENT a ANY>"},
      {"<?p ]> ?><!ELEMENT a ANY>]>", "<!ELEMENT a ANY>"},
      {"<?p <!ELEMENT a ANY> ?>]>", ""},
      {"<!-- ' --><!ELEMENT a ANY>]>", "<!ELEMENT a ANY>"},
      // a reference between declarations
      {"%p; <!ELEMENT a ANY>]>", "<!ELEMENT a ANY>"},
      // what follows the end
      {"<!ELEMENT a ANY>]><a><!ELEMENT b ANY></a>", "<!ELEMENT a ANY>"},
      {"]<!ELEMENT a ANY>", ""},
      // what breaks off counts as far as it goes
      {"<!ELEMENT a", "<!ELEMENT a"},
      {"<!ATTLIST a b CDATA 'x", "<!ATTLIST a b CDATA 'x"},
      {"<!-- <!ELEMENT a ANY>", ""},
      {"<", ""},
      {"<!", ""},
      // names by case, and as they begin
      {"<!element a ANY>]>", ""},
      {"<! ELEMENT a ANY>]>", ""},
  };
  for (const auto& [subset, counted] : rows) {
    EXPECT_EQ(bytesOfStructure(subset), counted.size()) << subset;
  }
}

}  // namespace
}  // namespace tamzo::testing
