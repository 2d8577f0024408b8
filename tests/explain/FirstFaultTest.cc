#include "explain/FirstFault.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/Growth.h"
#include "xml/XmlParser.h"

namespace tamzo::testing {
namespace {

using explain::Fault;
using explain::FaultKind;

std::string nameOf(FaultKind kind) {
  switch (kind) {
    case FaultKind::none:
      return "none";
    case FaultKind::unescapedAmpersand:
      return "ampersand";
    case FaultKind::undefinedEntity:
      return "entity";
    case FaultKind::duplicateAttribute:
      return "duplicate";
    case FaultKind::controlCharacter:
      return "control";
    case FaultKind::blankBeforeDeclaration:
      return "before-declaration";
    case FaultKind::cutOff:
      return "cut-off";
    default:
      return "other";
  }
}

// The kind, and what it names.
std::string told(const Fault& fault) {
  std::string line = nameOf(fault.kind);
  line += fault.name.empty() ? "" : " " + fault.name;
  line += fault.codePoint == 0 ? "" : " " + std::to_string(fault.codePoint);
  for (const std::string& name : fault.open) {
    line += " <" + name + ">";
  }
  return line;
}

struct Faulty {
  std::string text;  // with a ^ at the fault
  std::string told;
};

// What the scanner tells is asked of it only where the parser refuses.
void check(const std::vector<Faulty>& cases) {
  for (const Faulty& one : cases) {
    const std::size_t at = one.text.find('^');
    ASSERT_NE(at, std::string::npos) << one.text;
    const std::string text = one.text.substr(0, at) + one.text.substr(at + 1);
    const Fault fault = explain::findFirstFault(text);
    EXPECT_EQ(told(fault), one.told) << one.text;
    EXPECT_EQ(fault.at, at) << one.text;
    EXPECT_EQ(XmlParser().parse(Text(text)), nullptr) << one.text;
  }
}

TEST(FirstFaultTest, whatIsXmlHasNone) {
  for (const std::string text : {
           "<a/>",
           "\xEF\xBB\xBF<?xml version='1.0'?>\n<!-- - --><?pi a?><a b = 'c' d=\"'\" ></a "
           ">\r\n<!---->",
           "<?xml version='1.1'?><a/>",
           "<!DOCTYPE a><a>&amp;&lt;&gt;&quot;&apos;&#9;&#x10FFFF;&#xfFfD;</a>",
           "<!DOCTYPE a [<!ENTITY b 'c'><!ENTITY d \"e\">]><a f='&b;'>&d;</a>",
           "<!DOCTYPE a SYSTEM 'none.dtd'><a>&unknown;</a>",
           "<a><![CDATA[<&]]]]><![CDATA[>&nbsp;\x7F]]>]] ></a>",
           "<a b='>' c=']]>'>></a><?pi?>",
           "<\xC3\xA9:b.c-d_1 \xC3\xA9='1'/>",
           "<a b='1' B='1' c:b='1' xmlns:c='u'/>",
       }) {
    EXPECT_EQ(told(explain::findFirstFault(text)), "none") << text;
    EXPECT_NE(XmlParser().parse(Text(text)), nullptr) << text;
  }
}

TEST(FirstFaultTest, anAmpersandThatBeginsNoReference) {
  check({
      {"<a>b ^& c</a>", "ampersand"},
      {"<a>b^&c=d</a>", "ampersand"},
      {"<a>b^&</a>", "ampersand"},
      {"<a>^&;</a>", "ampersand"},
      {"<a>^&&amp;</a>", "ampersand"},
      {"<a b='c^&d'/>", "ampersand"},
      {"<a b='c^&d=\"'/>", "ampersand"},
      {"<a>&amp;^&amp </a>", "ampersand"},
      {"<a>^&#;</a>", "ampersand"},
      {"<a>^&#x;</a>", "ampersand"},
      {"<a>^&#12</a>", "ampersand"},
      {"<a>^&#1f;</a>", "ampersand"},
      {"<a>^&#X41;</a>", "ampersand"},
      {"<a>^&1;</a>", "ampersand"},
      {"<a><!-- & --><![CDATA[&]]><?p &?>^&b</a>", "ampersand"},
  });
}

TEST(FirstFaultTest, anEntityThatNobodyDeclared) {
  check({
      {"<a>^&nbsp;</a>", "entity nbsp"},
      {"<a b='^&copy;'/>", "entity copy"},
      {"<a>^&AMP;</a>", "entity AMP"},
      {"<a>&amp;^&e\xC3\xA9.1;</a>", "entity e\xC3\xA9.1"},
      {"<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;^&c;</a>", "entity c"},
      {"<!DOCTYPE a><a>^&b;</a>", "entity b"},
  });
}

TEST(FirstFaultTest, anAttributeThatStandsTwice) {
  std::string many;
  for (int i = 0; i < 40; ++i) {
    many += " a" + std::to_string(i) + "=''";
  }
  check({
      {"<a b='1' ^b='1'/>", "duplicate b"},
      {"<a>\n<c d:b=''\n\t^d:b=\"\"></c></a>", "duplicate d:b"},
      {"<a b='' c='' b.='' ^c='&'/>", "duplicate c"},
      {"<a" + many + " ^a3=''/>", "duplicate a3"},
      {"<a" + many + " ^a39=''/>", "duplicate a39"},
  });
}

TEST(FirstFaultTest, aCharacterThatNoXmlHolds) {
  check({
      {"<a>^\x01</a>", "control 1"},
      {"<a b='^\x1F'/>", "control 31"},
      {"<!-- ^\x0B --><a/>", "control 11"},
      {"<a><![CDATA[^\x0C]]></a>", "control 12"},
      {"<a^\x08/>", "control 8"},
      {"<a/>^\x02", "control 2"},
      {"^\x1B<a/>", "control 27"},
      {"<a>^\xEF\xBF\xBF</a>", "control 65535"},
      {"<a>^\xEF\xBF\xBE</a>", "control 65534"},
      {"<a>^&#8;</a>", "control 8"},
      {"<a b='^&#x1f;'/>", "control 31"},
      {"<a>^&#xD800;</a>", "control 55296"},
      {"<a>^&#xFFFE;</a>", "control 65534"},
      {"<a>^&#99999999999;</a>", "control 1114112"},
  });
  const Fault nul = explain::findFirstFault(std::string_view("<a>\0</a>", 8));
  EXPECT_EQ(nul.kind, FaultKind::controlCharacter);
  EXPECT_EQ(nul.at, 3U);
  EXPECT_EQ(told(explain::findFirstFault("<a>&#0;</a>")), "control");
}

TEST(FirstFaultTest, whatStandsBeforeADeclaration) {
  check({
      {" ^<?xml version='1.0'?><a/>", "before-declaration"},
      {"\r\n\t^<?xml version='1.0'?><a/>", "before-declaration"},
      {"PHP Warning: x\n^<?xml version='1.0'?><a/>", "before-declaration"},
      {"<!-- a -->^<?xml version='1.0'?><a/>", "before-declaration"},
      {"\xEF\xBB\xBF ^<?xml version='1.0'?><a/>", "before-declaration"},
      {"\xEF\xBB\xBF\xEF\xBB\xBF^<?xml version='1.0'?><a/>", "before-declaration"},
      {"<?xml version='1.0'?>^<?xml version='1.0'?><a/>", "before-declaration"},
      // It is no declaration of the document any more.
      {"<a>^<?xml version='1.0'?></a>", "other"},
  });
}

TEST(FirstFaultTest, aTextThatEndsInsideOfAnElementOrATag) {
  check({
      {"<a>^", "cut-off <a>"},
      {"<a>\n^", "cut-off <a>"},
      {"<a><b/><c>d^", "cut-off <a> <c>"},
      {"<a><^", "cut-off <a>"},
      {"<a></^", "cut-off <a>"},
      {"<a></a^", "cut-off <a>"},
      {"<a></a ^", "cut-off <a>"},
      {"<a><b^", "cut-off <a>"},
      {"<a><b ^", "cut-off <a>"},
      {"<a><b c^", "cut-off <a>"},
      {"<a><b c =^", "cut-off <a>"},
      {"<a><b c=' ^", "cut-off <a>"},
      {"<a><b c='d'^", "cut-off <a>"},
      {"<a><b /^", "cut-off <a>"},
      {"<a>&^", "cut-off <a>"},
      {"<a>&am^", "cut-off <a>"},
      {"<a>&#x1^", "cut-off <a>"},
      {"<a b='&am^", "cut-off"},
      {"<a><!^", "cut-off <a>"},
      {"<a><!-^", "cut-off <a>"},
      {"<a><!-- b -^", "cut-off <a>"},
      {"<a><!-- b --^", "cut-off <a>"},
      {"<a><![CDA^", "cut-off <a>"},
      {"<a><![CDATA[b]]^", "cut-off <a>"},
      {"<a><?b ?^", "cut-off <a>"},
      {"<a^", "cut-off"},
      {"<^", "cut-off"},
      {"<?xml version='1.0'?>\n<a b^", "cut-off"},
  });
}

TEST(FirstFaultTest, whatHasNoNameOfItsOwn) {
  check({
      {"<a><b>^</a>", "other"},
      {"<a>^</b></a>", "other"},
      {"<a></a ^b>", "other"},
      {"<a></a>^b", "other"},
      {"<a/>^&amp;", "other"},
      {"<a/>^<b/>", "other"},
      {"<a/>^</a>", "other"},
      {"<a/><!-- b^", "other"},
      {"<a/>^<![CDATA[b]]>", "other"},
      {"<a>b ^< c</a>", "other"},
      {"<a>^<1/></a>", "other"},
      {"<a>^<!b></a>", "other"},
      {"<a>b ^]]> c</a>", "other"},
      {"<a><!-- b ^-- c --></a>", "other"},
      {"<a b='^<'/>", "other"},
      {"<a ^b>", "other"},
      {"<a b=^c/>", "other"},
      {"<a b='c'^d='e'/>", "other"},
      {"<a ^=''/>", "other"},
      {"<a ^/b>", "other"},
      {"^abcd", "other"},
      {"^&lt;a/>", "other"},
      {"^<!doctype a><a/>", "other"},
      {"<!-- a --><!-- b^", "other"},
      {"^    ", "other"},
      {"<?xml version='1.0'?>^\n", "other"},
  });
}

TEST(FirstFaultTest, aDeclarationThatIsNotInOrderComesFirst) {
  for (const std::string attributes : {
           "",
           " encoding='UTF-8'",
           " version=1.0",
           " version='1.0",
           " version=''",
           " version='1'",
           " version='2.0'",
           " version='1.x'",
           " version='1.0'encoding='UTF-8'",
           " encoding='UTF-8' version='1.0'",
           " version='1.0' standalone='no' encoding='UTF-8'",
           " version='1.0' encoding='8'",
           " version='1.0' encoding='UTF 8'",
           " version='1.0' standalone='maybe'",
           " version='1.0' other='a'",
       }) {
    check({{"^<?xml " + attributes + "?><a>&b</a>", "other"}});
  }
  check({{"^<?xml version='1.0'>\n<a>&b</a>", "other"}, {"^<?xml version='1.0' enc", "other"}});
  for (const std::string attributes : {
           "version='1.0'",
           "version = \"1.1\"\n encoding='utf-8'  standalone='yes' ",
           " version='1.0' standalone='no'",
       }) {
    EXPECT_EQ(told(explain::findFirstFault("<?xml " + attributes + "?><a>&b</a>")), "ampersand")
        << attributes;
  }
}

TEST(FirstFaultTest, whatHasNoNameSaysWhatToWriteInstead) {
  const std::vector<std::pair<std::string, std::string>> remedies{
      {"no ad", "answer with a VAST document"},
      {"  \n ", "answer with a VAST document"},
      {"<a/>x", "nothing after the end tag"},
      {"<a/><b/>", "nothing after the end tag"},
      {"<a/><!b>", "nothing after the end tag"},
      {"<a/></a>", "end tag of its own name"},
      {"<a><b></a>", "end tag of its own name"},
      {"<a>1 < 2</a>", "\"&lt;\""},
      {"<a b='<'/>", "its quote"},
      {"<a b=c/>", "in straight quotes"},
      {"<a b/>", "in straight quotes"},
      {"<a b=\xE2\x80\x9C"
       "c\xE2\x80\x9D/>",
       "in straight quotes"},
      {"<a b='c'd='e'/>", "with a blank before it"},
      {"<a /b>", "end each tag"},
      {"<a></a b>", "end each tag"},
      {"<a><!-- b -- c --></a>", "\"--\""},
      {"<a>]]></a>", "CDATA"},
      {"<?xml version=1.0?><a/>", "leave the declaration out"},
      {"<a><?xml version='1.0'?></a>", "once, before everything else"},
      {"<a/><!-- b", "the whole document"},
  };
  for (const auto& [text, remedy] : remedies) {
    const Fault fault = explain::findFirstFault(text);
    EXPECT_EQ(nameOf(fault.kind), "other") << text;
    EXPECT_NE(fault.remedy.find(remedy), std::string_view::npos) << text << ": " << fault.remedy;
  }
}

TEST(FirstFaultTest, theFirstInTheTextCounts) {
  check({
      {"<a>^&b <c d='' d=''>\x01", "ampersand"},
      {"<a>^\x01&b", "control 1"},
      {"<a b='' ^b=''>&c; \x01", "duplicate b"},
      {"<a>^&c; &d</b>", "entity c"},
      {"<a>^</b>&c", "other"},
  });
}

TEST(FirstFaultTest, costsTimeLinearInTheText) {
  EXPECT_TRUE(growsLinearly(2000, [](std::size_t count) {
    std::string text = "<a";
    for (std::size_t i = 0; i < count; ++i) {
      text += " a" + std::to_string(i) + "='&amp;'";
    }
    text += '>';
    for (std::size_t i = 0; i < count; ++i) {
      text += "<b>]]&gt;<!-- c -->";
    }
    return [text] { explain::findFirstFault(text); };
  }));
}

}  // namespace
}  // namespace tamzo::testing
