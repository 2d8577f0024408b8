// URLs made of texts, and who reads them. CurlReaderTest.cc has the default reader.

#include "tamzo/net/TamzoUrlReader.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/FetchFixture.h"

namespace tamzo::testing {
namespace {

using TamzoUrlReaderTest = FetchFixture;

TEST_F(TamzoUrlReaderTest, AUrlIsMadeOfAnyText) {
  const std::vector<std::pair<const char*, const char*>> rows{
      {"http://a.example/b?c=d&e=f#g", "http://a.example/b?c=d&e=f#g"},
      {"http://a.example/a b", "http://a.example/a%20b"},
      {"http://a.example/%20%zz%4", "http://a.example/%20%25zz%254"},
      {"http://a.example/%", "http://a.example/%25"},
      {"http://a.example/\xC3\xA4\xE2\x82\xAC", "http://a.example/%C3%A4%E2%82%AC"},
      {"http://a.example/<>\"{}|\\^`", "http://a.example/%3C%3E%22%7B%7D%7C%5C%5E%60"},
      {"http://a.example/[MACRO]?[x]", "http://a.example/%5BMACRO%5D?%5Bx%5D"},
      {"http://[::1]:80/[x]", "http://[::1]:80/%5Bx%5D"},
      {"http://a.example/-._~!$&'()*+,;=:@", "http://a.example/-._~!$&'()*+,;=:@"},
      {"http://a.example/#a#b", "http://a.example/#a%23b"},
      {"http://a.example/a\nb\x7F", "http://a.example/a%0Ab%7F"},
      {"http", "http"},
  };
  for (const auto& [text, url] : rows) {
    EXPECT_EQ(TamzoUrlReader::urlFromText(text), Text(url)) << text;
  }
  EXPECT_TRUE(TamzoUrlReader::urlFromText("").isNil());

  const std::string longest = "http://a.example/" + std::string((1U << 20U) - 17, '[');
  EXPECT_EQ(TamzoUrlReader::urlFromText(longest).view().size(), 17 + 3 * (longest.size() - 17));
  EXPECT_TRUE(TamzoUrlReader::urlFromText(longest + "x").isNil()) << "no server takes it";
}

TEST_F(TamzoUrlReaderTest, AUrlOfAUrlIsThatUrl) {
  for (const char* text : {"http://a.example/a b[c]#d#e", "\xC3\xA4%zz%20", "[::1]/[x]", "%"}) {
    const Text url = TamzoUrlReader::urlFromText(text);
    EXPECT_EQ(TamzoUrlReader::urlFromText(url), url) << text;
  }
}

TEST_F(TamzoUrlReaderTest, BytesThatAreNoUtf8AreEncodedOneByOne) {
  EXPECT_EQ(TamzoUrlReader::urlFromText("http://a/\xFF\xE2\x82"), Text("http://a/%FF%E2%82"));
  EXPECT_EQ(TamzoUrlReader::urlFromText(std::string("http://a/\0b", 11)), Text("http://a/%00b"));
}

TEST_F(TamzoUrlReaderTest, AHostsReaderTakesThePlaceOfTheDefaultAndGivesItBack) {
  server_.serve("/x", "from the network");
  readUrlsWith([](const Text& url) { return join({"host ", url.view()}); });
  EXPECT_EQ(readUrl("any text"), "host any text");
  EXPECT_TRUE(server_.requests().empty());
  readUrlsWith({});
  EXPECT_EQ(read("/x"), "from the network");
}

TEST_F(TamzoUrlReaderTest, WhatAHostsReaderGivesIsHandedOn) {
  readUrlsWith([](const Text& url) -> std::optional<std::string> {
    if (url.isNil()) {
      throw std::runtime_error("nil");
    }
    return url == "none" ? std::nullopt : std::optional(std::string(url.view()));
  });
  EXPECT_EQ(readUrl("none"), std::nullopt);
  EXPECT_EQ(readUrl(""), "");
  EXPECT_THROW(readUrl(Text()), std::runtime_error);
  limit(60.0, 1);
  EXPECT_EQ(readUrl("long"), "long") << "limits are the default reader's";
}

TEST_F(TamzoUrlReaderTest, AReaderMayReplaceItselfWhileItReads) {
  readUrlsWith([text = std::string(100, 'x')](const Text&) {
    readUrlsWith([](const Text&) { return "next"; });
    return text;
  });
  EXPECT_EQ(readUrl("u"), std::string(100, 'x'));
  EXPECT_EQ(readUrl("u"), "next");
}

TEST_F(TamzoUrlReaderTest, LimitsOfNoTimeLetNothingBeRead) {
  server_.serve("/x", "from the network");
  const Text url = server_.url("/x");
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double none : {kNaN, -kNaN, 0.0, -0.0, -1.0, -kInfinity}) {
    TamzoUrlReader::Limits limits;
    limits.totalSeconds = none;
    EXPECT_EQ(TamzoUrlReader::read(url, limits), std::nullopt) << none;
    limits = {};
    limits.connectSeconds = none;
    EXPECT_EQ(TamzoUrlReader::read(url, limits), std::nullopt) << none;
  }
  EXPECT_TRUE(server_.requests().empty());
  TamzoUrlReader::Limits endless;
  endless.connectSeconds = endless.totalSeconds = kInfinity;
  EXPECT_EQ(TamzoUrlReader::read(url, endless), "from the network");
}

}  // namespace
}  // namespace tamzo::testing
