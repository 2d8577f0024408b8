#include "xml/AssignmentEscape.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/AssignmentSearch.h"
#include "tests/support/StrictXml.h"

namespace tamzo::testing {
namespace {

struct EscapeRow {
  std::string xml;
  std::string written;
};

TEST(AssignmentEscape, WritesEachPieceInItsOwnWay) {
  for (const EscapeRow& row : std::vector<EscapeRow>{
           {"<a>xmlns=1</a>", "<a>xmlns&#61;1</a>"},
           {"<a>xmlns=xmlns=</a>", "<a>xmlns&#61;xmlns&#61;</a>"},
           {"<a b=\"xmlns=1\"/>", "<a b=\"xmlns&#61;1\"/>"},
           {"<a b='xmlns=1' c=\"'xmlns='\"/>", "<a b='xmlns&#61;1' c=\"'xmlns&#61;'\"/>"},
           {"<a xmlns=\"u\"/>", "<a xmlns =\"u\"/>"},
           {"<a myxmlns='u' xmlns='v'/>", "<a myxmlns ='u' xmlns ='v'/>"},
           {"<a><![CDATA[xmlns=1]]></a>", "<a><![CDATA[xmlns]]><![CDATA[=1]]></a>"},
           {"<a><![CDATA[<b c=']]>xmlns=1</a>", "<a><![CDATA[<b c=']]>xmlns&#61;1</a>"},
           {"<a><!--xmlns=1--></a>", "<a><!--xmlns =1--></a>"},
           {"<a><!-- > \" --><b xmlns=''/></a>", "<a><!-- > \" --><b xmlns =''/></a>"},
           {"<a><?p xmlns=?></a>", "<a><?p xmlns =?></a>"},
           {"<a><?p it's?>xmlns=<b/></a>", "<a><?p it's?>xmlns&#61;<b/></a>"},
           {"<a b='>'>xmlns=</a>", "<a b='>'>xmlns&#61;</a>"},
       }) {
    EXPECT_EQ(withoutAssignments(row.xml, "xmlns"), row.written);
    EXPECT_EQ(strictComplaint(row.written), "");
  }
}

TEST(AssignmentEscape, KnowsTheWordInAnyLetters) {
  EXPECT_EQ(withoutAssignments("<a>XmLnS=</a>", "xmlns"), "<a>XmLnS&#61;</a>");
  EXPECT_EQ(withoutAssignments("<a xmln\xC5\xBF='1'/>", "xmlns"), "<a xmln\xC5\xBF ='1'/>");
  EXPECT_EQ(withoutAssignments("<a>xmlns=b=</a>", "b"), "<a>xmlns=b&#61;</a>");
}

TEST(AssignmentEscape, LeavesEverythingElseAsItIs) {
  for (const std::string xml :
       {"", "<a/>", "<a xmlns:p='u' p:b='1'/>", "<a>xmlns =1 xmlns&#61;1 =xmlns mlns=</a>"}) {
    EXPECT_EQ(withoutAssignments(xml, "xmlns"), xml);
  }
}

TEST(AssignmentEscape, TakesTimeLinearInTheText) {
  std::string xml = "<a>";
  for (int i = 0; i < 200'000; ++i) {
    xml += "xmlns=<b xmlns=''/>";
  }
  const std::string written = withoutAssignments(xml + "</a>", "xmlns");
  EXPECT_FALSE(findAssignment(written, "xmlns", 0));
}

}  // namespace
}  // namespace tamzo::testing
