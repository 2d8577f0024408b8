// What a parse makes of what the default reader brings, or does not bring.

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/support/FetchFixture.h"
#include "tests/support/Responses.h"

namespace tamzo::testing {
namespace {

using FetchTest = FetchFixture;

const std::string kInline = inlineAd("3.0");

TEST_F(FetchTest, OddCharactersOfATagAreSentEncoded) {
  const std::string sent = "/a%20b%7C%C3%A4%5BX%5D%20%25?q=%3Cx%3E&r=%22";
  server_.serve(sent, kInline);
  const auto ad =
      TamzoVastAd::initWithVast(server_.url("/a b|\xC3\xA4[X]%20%?q=<x>&r=\"#fragment"));
  EXPECT_EQ(server_.requests(), std::vector<std::string>{sent});
  EXPECT_EQ(ad->errorCode(), 0);
}

TEST_F(FetchTest, BodiesEndAsTheirErrorCode) {
  struct Row {
    const char* name;
    std::string body;
    int code;
  };
  const std::vector<Row> rows{
      {"an ad", kInline, 0},
      {"nothing", "", kEmptyContent},
      {"white space", " \n", kNotXml},
      {"a page", "<html><body>no ad<br></body></html>", kNotXml},
      {"Latin-1", "<VAST version='3.0'><!-- \xE4 --></VAST>", kEmptyContent},
      {"UTF-16", bytes("\xFF\xFE<\0a\0/\0>\0"), kEmptyContent},
      {"a cut character", join({kInline, "\xE2\x82"}), kEmptyContent},
      {"a surrogate", "<VAST version='3.0'><!-- \xED\xA0\x80 --></VAST>", kEmptyContent},
      {"a byte order mark", join({"\xEF\xBB\xBF", kInline}), 0},
      {"another encoding's name", join({"<?xml version='1.0' encoding='ISO-8859-1'?>", kInline}),
       0},
      {"a NUL", join({"<VAST version='3.0'/>", bytes("\0")}), kNotXml},
      {"a URL", server_.url("/ad"), kNotXml},
  };
  for (const Row& row : rows) {
    server_.serve("/tag", row.body);
    EXPECT_EQ(TamzoVastAd::initWithVast(server_.url("/tag"))->errorCode(), row.code) << row.name;
  }
}

TEST_F(FetchTest, FailedReadsEndAsEmptyContent) {
  server_.on("/never", [this](const Exchange&) { waitForClosing(); });
  redirect("/loop", "/loop");
  limit(0.2);
  for (const char* path : {"/unknown", "/never", "/loop"}) {
    const auto ad =
        TamzoVastAd::initWithVast(wrapper("3.0", "<Impression>i</Impression>", server_.url(path)));
    EXPECT_EQ(ad->errorCode(), kEmptyContent) << path;
    EXPECT_EQ(ad->adID(), Text("wrapper")) << path;
    EXPECT_EQ(ad->vastTagURI(), Text(server_.url(path)));
  }
}

TEST_F(FetchTest, ManyThreadsMayReadAtOnce) {
  server_.serve("/x", kInline);
  std::vector<int> codes(8, -1);
  std::vector<std::thread> threads;
  for (int& code : codes) {
    threads.emplace_back([&] { code = TamzoVastAd::initWithVast(server_.url("/x"))->errorCode(); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(codes, std::vector<int>(8, 0));
  EXPECT_EQ(server_.requests().size(), 8U);
}

}  // namespace
}  // namespace tamzo::testing
