// That a name is lost when memory runs out is tested by AllocationFailureTest, with the seeds of
// names. Here: that a wrong one is not taken for it.

#include "xml/LostName.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tamzo/xml/DDXMLDocument.h"

namespace tamzo::testing {
namespace {

constexpr const char* kE = "\xC3\xA9";

// Names with a letter beyond ASCII, for "e".
std::string withAccents(std::string text) {
  for (std::size_t at = text.find('e'); at != std::string::npos; at = text.find('e', at + 2)) {
    text.replace(at, 1, kE);
  }
  return text;
}

TEST(LostNameTest, NamesWithColonsInOddPlacesAreRead) {
  for (const char* xml : {"<:e/>",
                          "<e:/>",
                          "<e::/>",
                          "<e:e:e/>",
                          "<e:e:/>",
                          "<:/>",
                          "<::/>",
                          "<e:1/>",
                          "<e:1e/>",
                          "<e/><e:e/>",
                          "<a :e=''/>",
                          "<a e:=''/>",
                          "<a e:e=''/>",
                          "<a e:e:e=''/>",
                          "<a e:1=''/>",
                          "<a\n:e='' e:e=''\te:=''/>",
                          "<:e></:e>",
                          "<e:></e:>",
                          "<e:e:e></e:e:e>",
                          "<e:b xmlns:e='u' e:c=''/>",
                          "<b xmlns:e='u'><e:b/></b>"}) {
    for (const std::string& text : {std::string(xml), withAccents(xml)}) {
      EXPECT_NE(DDXMLDocument::initWithXMLString(Text("<r>" + text + "</r>"), 0), nullptr) << text;
    }
  }
}

TEST(LostNameTest, EmptyAddressesAreRead) {
  for (const char* xml : {"<e:a xmlns:e=''/>", "<a xmlns:e=\"\" e:b=''/>", "<a xmlns:e = '' />",
                          "<a xmlns=''/>", "<a xmlns:e='' xmlns:e2=\"\"/>"}) {
    for (const std::string& text : {std::string(xml), withAccents(xml)}) {
      EXPECT_NE(DDXMLDocument::initWithXMLString(Text("<r>" + text + "</r>"), 0), nullptr) << text;
    }
  }
}

TEST(LostNameTest, AddressesOfWhichEntitiesLeaveNothingAreRead) {
  EXPECT_NE(DDXMLDocument::initWithXMLString(
                Text("<!DOCTYPE r [<!ENTITY e ''>]><r><a xmlns:e='&e;'/></r>"), 0),
            nullptr);
}

// No end, none of its own kind, or a character that ends the reading.
TEST(LostNameTest, AddressesWithoutAnEndAreNoXml) {
  for (const char* xml : {"<a xmlns:e='u", "<a xmlns:e=\"u'", "<a xmlns:e=\"u'<b/>",
                          "<a xmlns:e=\"u' >", "<a xmlns:e='u<b' />", "<a xmlns:e='&u;' />"}) {
    EXPECT_EQ(DDXMLDocument::initWithXMLString(Text("<r>" + std::string(xml)), 0), nullptr) << xml;
  }
}

TEST(LostNameTest, NamesThatAreNoneAreNoXml) {
  for (const char* xml : {"<",
                          "<1/>",
                          "< e/>",
                          "<e=''/>",
                          "<e:e=''/>",
                          "<e ='x'/>",
                          "<e 1=''/>",
                          "<e e='' 1=''/>",
                          "<e e='' =''/>",
                          "<e/ >",
                          "<e e/>",
                          "<e &/>",
                          "<e e='' e:=''1/>",
                          "<e\n=''/>",
                          "<=e/>",
                          "<e></1>",
                          "<e></>",
                          "<e></ee>",
                          "&;",
                          "&1;",
                          "<?1?>"}) {
    for (const std::string& text : {std::string(xml), withAccents(xml)}) {
      EXPECT_EQ(DDXMLDocument::initWithXMLString(Text("<r>" + text + "</r>"), 0), nullptr) << text;
    }
  }
}

TEST(LostNameTest, TextsThatBreakOffAreNoXml) {
  const std::string whole =
      "<r><e xmlns:e='u' xmlns=\"v\" e:e='x' :e='' e:=''><e:e e:e2='&amp;'>x</e:e></e><:e/></r>";
  for (const std::string& text : {whole, withAccents(whole)}) {
    for (std::size_t cut = 0; cut < text.size(); ++cut) {
      EXPECT_EQ(DDXMLDocument::initWithXMLString(Text(text.substr(0, cut)), 0), nullptr) << cut;
    }
    EXPECT_NE(DDXMLDocument::initWithXMLString(Text(text), 0), nullptr) << text;
  }
}

TEST(LostNameTest, TheSameHoldsInAnEntity) {
  for (const char* xml : {"<:e/>", "<e:/>", "<e:e e:e=''/>"}) {
    const std::string text = "<!DOCTYPE r [<!ENTITY x \"" + withAccents(xml) + "\">]><r>&x;</r>";
    EXPECT_NE(DDXMLDocument::initWithXMLString(Text(text), 0), nullptr) << text;
  }
  for (const char* xml : {"<1/>", "<e=''/>", "<e e='' =''/>"}) {
    const std::string text = "<!DOCTYPE r [<!ENTITY x \"" + withAccents(xml) + "\">]><r>&x;</r>";
    EXPECT_EQ(DDXMLDocument::initWithXMLString(Text(text), 0), nullptr) << text;
  }
}

}  // namespace
}  // namespace tamzo::testing
