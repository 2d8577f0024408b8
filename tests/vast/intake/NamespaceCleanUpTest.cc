// The clean-up that takes a response's default namespace away.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tamzo/vast/TamzoVastAd.h"
#include "tests/support/Growth.h"

namespace tamzo::testing {
namespace {

std::string collapse(const std::string& text) {
  return std::string(TamzoVastAd::replaceWithPattern("xmlns", text).view());
}

TEST(NamespaceCleanUpTest, ReplacesADeclarationUpToTheNextWhiteSpaceByItsWord) {
  const std::vector<std::pair<std::string, std::string>> rows{
      {"", ""},
      {"no declaration at all ", "no declaration at all "},
      {"<VAST version='3.0' xmlns='urn:x' id='1'>", "<VAST version='3.0' xmlnsid='1'>"},
      {"<VAST version='3.0' xmlns:xsi='urn:y'>", "<VAST version='3.0' xmlns:xsi='urn:y'>"},
      {"<VAST XMLNS='urn:x' version='2.0'>", "<VAST xmlnsversion='2.0'>"},
      {"<a xMlNs='u' b='1'/>", "<a xmlnsb='1'/>"},
      {"<a xmln\xC5\xBF='u' b='1'/>", "<a xmlnsb='1'/>"},  // the long s is an s
      {"<a xmlns ='u' b='1'/>", "<a xmlns ='u' b='1'/>"},
      {"<a xmlns= 'u' b='1'/>", "<a xmlns'u' b='1'/>"},
      {"<a xmlns='u v' b='1'/>", "<a xmlnsv' b='1'/>"},
      {"<a xmlns='u'>\n<b/></a>", "<a xmlns<b/></a>"},
      {"<a xmlns='u'><b/></a>", "<a xmlns='u'><b/></a>"},
      {"<a xmlns='u'><b c='1'/></a>", "<a xmlnsc='1'/></a>"},
      {"<a xmlns='u'\r\nb='1'/>", "<a xmlns\nb='1'/>"},
      {"<a xmlns='u' b='1'><c xmlns='v' d='2'/></a>", "<a xmlnsb='1'><c xmlnsd='2'/></a>"},
      {"xmlns=xmlns= xmlns= ", "xmlnsxmlns"},
      {"myxmlns='u' b", "myxmlnsb"},
      {"xmlxmlns=u b", "xmlxmlnsb"},
      {"xxmlns=u b", "xxmlnsb"},
      {"first xmlns=a last xmlns=b", "first xmlnslast xmlns=b"},
      {"xmlns=", "xmlns="},
      {"xmlns= ", "xmlns"},
      {"xmlns", "xmlns"},
      {"\xF0\x9F\x98\x80xmlns=\xC3\xA4 \xC3\xB6", "\xF0\x9F\x98\x80xmlns\xC3\xB6"},
  };
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(collapse(text), expected) << text;
  }
}

TEST(NamespaceCleanUpTest, EndsAtAnyWhiteSpaceOfUnicode) {
  for (const char* space : {" ", "\t", "\n", "\v", "\f", "\r", "\xC2\x85", "\xC2\xA0",
                            "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x8A", "\xE2\x80\xA8",
                            "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F", "\xE3\x80\x80"}) {
    EXPECT_EQ(collapse(std::string("xmlns='u'") + space + "b c"), "xmlnsb c")
        << ::testing::PrintToString(space);
  }
  for (const char* other : {"\xE2\x80\x8B", "\xEF\xBB\xBF", "\x1F", "\xC2\x86"}) {
    EXPECT_EQ(collapse(std::string("xmlns='u'") + other + "b c"), "xmlnsc")
        << ::testing::PrintToString(other);
  }
}

TEST(NamespaceCleanUpTest, HandsOnTheVeryTextWhereNothingMatches) {
  for (const char* characters : {"", "<VAST/>", "xmlns='u'"}) {
    const Text text{std::string(characters)};
    EXPECT_TRUE(TamzoVastAd::replaceWithPattern("xmlns", text).isSameObject(text)) << characters;
  }
  EXPECT_TRUE(TamzoVastAd::replaceWithPattern("xmlns", Text()).isNil());
}

TEST(NamespaceCleanUpTest, TakesAnyWord) {
  EXPECT_EQ(TamzoVastAd::replaceWithPattern("skip", "a S\xE2\x84\xAAIP=1 b"), Text("a skipb"))
      << "the Kelvin sign is a k";
  EXPECT_EQ(TamzoVastAd::replaceWithPattern("s", "\xC5\xBF=1 b"), Text("sb"));
  EXPECT_EQ(TamzoVastAd::replaceWithPattern("xmlns:x", "xmlns:X=1 b"), Text("xmlns:xb"));
}

// The same, slowly: characters one by one, and at each every way that a match could go on.
using Characters = std::vector<std::string>;

bool isSpace(const std::string& c) {
  return c == " " || c == "\n" || c == "\r" || c == "\xC2\xA0" || c == "\xE2\x80\xA8";
}

bool isLineEnd(const std::string& c) { return c == "\n" || c == "\r" || c == "\xE2\x80\xA8"; }

std::optional<std::size_t> endOfMatch(const Characters& text, std::size_t at) {
  const std::vector<Characters> word{
      {"x", "X"}, {"m", "M"}, {"l", "L"}, {"n", "N"}, {"s", "S", "\xC5\xBF"}, {"="}};
  for (const Characters& choices : word) {
    if (at == text.size() || std::find(choices.begin(), choices.end(), text[at]) == choices.end()) {
      return std::nullopt;
    }
    ++at;
  }
  for (; at < text.size(); ++at) {
    if (isSpace(text[at])) {
      return at + 1;
    }
    if (isLineEnd(text[at])) {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

std::string collapseSlowly(const Characters& text) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    if (const auto end = endOfMatch(text, at)) {
      out += "xmlns";
      at = *end;
    } else {
      out += text[at++];
    }
  }
  return out;
}

TEST(NamespaceCleanUpTest, AgreesWithASlowAndObviousOneOnRandomTexts) {
  const std::vector<Characters> pieces{
      {"x", "m", "l", "n", "s", "="},
      {"X", "m", "L", "n", "S", "="},
      {"x", "m", "l", "n", "\xC5\xBF", "="},
      {"x", "m", "l", "n", "s"},
      {"x", "m", "l"},
      {"x"},
      {"="},
      {" "},
      {"\n"},
      {"\r"},
      {"\xC2\xA0"},
      {"\xE2\x80\xA8"},
      {"\xC3\xA4"},
      {"\xF0\x9F\x98\x80"},
      {"'"},
      {":"},
      {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p", "q"},
      Characters(60, "z"),
  };
  std::mt19937 random(20260101);
  for (int round = 0; round < 20'000; ++round) {
    Characters text;
    for (auto count = random() % 16; count > 0; --count) {
      const Characters& piece = pieces[random() % pieces.size()];
      text.insert(text.end(), piece.begin(), piece.end());
    }
    std::string joined;
    for (const std::string& character : text) {
      joined += character;
    }
    ASSERT_EQ(collapse(joined), collapseSlowly(text)) << joined;
  }
}

TEST(NamespaceCleanUpTest, OfFiveMegabytesTakesNoTime) {
  constexpr std::size_t kSize = 5'000'000;
  for (const std::string_view piece : {"a", "x", "xm", "xmlns", "xmlns=", "xmlns= ", "XMLNS='u'",
                                       "<a b='c'/>\n", " ", "=", "\xC5\xBF"}) {
    const auto textOf = [piece](std::size_t size) {
      std::string text;
      while (text.size() < size) {
        text += piece;
      }
      return text;
    };
    const std::string text = textOf(kSize);
    const std::string collapsed = collapse(text);
    if (piece == "xmlns= ") {
      EXPECT_EQ(collapsed.size(), text.size() / 7 * 5);
    } else {
      EXPECT_TRUE(collapsed == text) << piece;
    }
    EXPECT_TRUE(growsLinearly(50'000, [&textOf](std::size_t size) {
      return [text = Text(textOf(size))] { TamzoVastAd::replaceWithPattern("xmlns", text); };
    })) << piece;
  }
}

}  // namespace
}  // namespace tamzo::testing
