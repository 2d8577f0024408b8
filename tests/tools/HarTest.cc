#include "tools/Har.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tools/CommandError.h"

namespace tamzo::command {
namespace {

TEST(HarTest, whatIsWrittenIsRead) {
  Har har;
  HarEntry entry;
  entry.url = "https://a.example/\"";
  entry.status = 200;
  entry.body = std::string("\xff\x00<", 3);
  entry.contentType = "text/xml";
  har.entries.push_back(entry);
  entry.body.reset();
  entry.status = 0;
  entry.failure = "dns";
  har.entries.push_back(entry);
  har.unaskedTags = {"https://a.example/?c=1"};
  const std::string text = writeHar(har);
  const auto json = nlohmann::json::parse(text);
  EXPECT_EQ(json["log"]["version"], "1.2");
  EXPECT_EQ(json["log"]["entries"][0]["response"]["content"]["encoding"], "base64");
  EXPECT_EQ(json["log"]["entries"][1]["_failure"], "dns");
  const Har read = readHar(text);
  ASSERT_EQ(read.entries.size(), 2U);
  EXPECT_EQ(read.entries[0].url, har.entries[0].url);
  EXPECT_EQ(read.entries[0].body, har.entries[0].body);
  EXPECT_EQ(read.entries[0].contentType, "text/xml");
  EXPECT_EQ(read.entries[1].failure, "dns");
  EXPECT_EQ(read.unaskedTags, har.unaskedTags);
}

TEST(HarTest, othersFilesAreRead) {
  const Har har = readHar(R"({"log": {"version": "1.2", "pages": [], "x": 1, "entries": [
    {"_initiator": {}, "request": {"method": "GET", "url": "https://a/", "headers": []},
     "response": {"status": 302, "redirectURL": "",
                  "headers": [{"name": "LOCATION", "value": "/b"}],
                  "content": {"size": 0, "mimeType": ""}}},
    {"request": {"url": "https://a/b"},
     "response": {"status": 200, "headers": [{"name": "content-type", "value": "text/xml"}],
                  "content": {"size": 4, "text": "PGEv\nPg==", "encoding": "base64"}},
     "time": 12.5, "timings": {"dns": -1, "connect": 3, "ssl": 2, "receive": 1}},
    {"request": {"url": "https://a/c"}, "response": {"status": 200, "content": {"size": 9}}},
    {}, 7]}})");
  ASSERT_EQ(har.entries.size(), 5U);
  EXPECT_EQ(har.entries[0].redirectUrl, "/b");
  EXPECT_EQ(har.entries[1].body, "<a/>");
  EXPECT_EQ(har.entries[1].contentType, "text/xml");
  EXPECT_EQ(har.entries[1].milliseconds.total, 12.5);
  EXPECT_EQ(har.entries[1].milliseconds.connect, 1.0);
  EXPECT_FALSE(har.entries[2].body);
  EXPECT_EQ(har.entries[4].url, "");
}

// A browser asks for leave with OPTIONS, a proxy opens its tunnel with CONNECT.
TEST(HarTest, requestsWithoutABodyArePassedOver) {
  std::string entries;
  for (const char* method : {"OPTIONS", "HEAD", "connect", "POST", "GET"}) {
    entries += std::string(entries.empty() ? "" : ",") + R"({"request": {"method": ")" + method +
               R"(", "url": "https://a/"}, "response": {"status": 200, "content": {"text": ")" +
               method + R"("}}})";
  }
  const Har har = readHar(R"({"log": {"entries": [)" + entries + "]}}");
  ASSERT_EQ(har.entries.size(), 2U);
  EXPECT_EQ(har.entries[0].body, "POST");
  EXPECT_EQ(har.entries[1].body, "GET");
}

TEST(HarTest, halvesOfSurrogatePairsSpoilNoFile) {
  const auto bodyOf = [](const std::string& text) {
    return readHar(R"({"log": {"entries": [{"response": {"content": {"text": ")" + text +
                   R"("}}}]}})")
        .entries.at(0)
        .body;
  };
  EXPECT_EQ(bodyOf(R"(a\uD83D\uDE00b)"),
            "a\xF0\x9F\x98\x80"
            "b");
  EXPECT_EQ(bodyOf(R"(\ud83dx)"), "\xEF\xBF\xBDx");
  EXPECT_EQ(bodyOf(R"(\ud83d\ud83d\ude00)"), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
  EXPECT_EQ(bodyOf(R"(\udE00\ud83d)"), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(bodyOf(R"(\\ud83d\n)"), "\\ud83d\n");
}

TEST(HarTest, base64IsNamedInAnyLetterCase) {
  const Har har = readHar(R"({"log": {"entries": [{"response": {"status": 200,
      "content": {"text": "PGEvPg==", "encoding": "BASE64"}}}]}})");
  EXPECT_EQ(har.entries.at(0).body, "<a/>");
}

TEST(HarTest, whatIsNoHarIsRefused) {
  for (const char* text : {"", "{", "[]", "{}", R"({"log": {}})", R"({"log": {"entries": {}}})"}) {
    EXPECT_THROW(readHar(text), CommandError) << text;
  }
}

TEST(HarTest, base64GoesBothWays) {
  for (const char* text : {"", "a", "ab", "abc", "abcd"}) {
    EXPECT_EQ(decodeBase64(encodeBase64(text)), text);
  }
  EXPECT_EQ(encodeBase64("abcd"), "YWJjZA==");
  EXPECT_FALSE(decodeBase64("!"));
}

}  // namespace
}  // namespace tamzo::command
