#include "net/FetchAnswer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tamzo::testing {
namespace {

class FetchAnswerTest : public ::testing::Test {
 protected:
  // How much of the headers is taken.
  std::size_t take(const std::vector<std::string>& lines) {
    std::size_t taken = 0;
    while (taken < lines.size() && answer_.takeHeader(lines[taken] + "\r\n")) {
      ++taken;
    }
    return taken;
  }

  FetchSpending spent_;
  FetchAnswer answer_{1000, spent_};
};

TEST_F(FetchAnswerTest, ARedirectSaysWhereTo) {
  take({"HTTP/1.1 302 Found", "location:  /next \t", "Location: /other", ""});
  EXPECT_TRUE(answer_.isRedirect());
  EXPECT_EQ(answer_.location(), "/next") << "the first one counts";
  EXPECT_TRUE(answer_.takeBody("elsewhere"));
  EXPECT_EQ(answer_.body(), "") << "it is counted, not kept";
  EXPECT_EQ(spent_.bodyBytes, 9U);
}

TEST_F(FetchAnswerTest, WhatIsNoRedirectIsNone) {
  for (const char* status :
       {"HTTP/1.1 200 OK", "HTTP/1.1 201 Created", "HTTP/1.0 404", "HTTP/1.1"}) {
    take({status, "Location: /next"});
    EXPECT_FALSE(answer_.isRedirect()) << status;
  }
  take({"HTTP/1.1 302 Found", "Location:", "Location:  ", "X-Location: /x", "Location"});
  EXPECT_FALSE(answer_.isRedirect());
  EXPECT_TRUE(answer_.takeBody("a page"));
  EXPECT_EQ(answer_.body(), "a page");
}

TEST_F(FetchAnswerTest, TheLastOfSeveralHeadsCounts) {
  take({"HTTP/1.1 302 Early", "Location: /no", "Content-Encoding: gzip", "", "HTTP/1.1 200 OK",
        "Content-Encoding: gzip", ""});
  EXPECT_FALSE(answer_.isRedirect());
  EXPECT_EQ(answer_.failure(), FetchFailure::none);
}

TEST_F(FetchAnswerTest, AHeadIsWholeWithItsLastLine) {
  EXPECT_FALSE(answer_.hasHead());
  take({"HTTP/1.1 100 Continue", ""});
  EXPECT_FALSE(answer_.hasHead()) << "the answer is still to come";
  take({"HTTP/1.1 200 OK", "Content-Length: 0"});
  EXPECT_FALSE(answer_.hasHead());
  take({""});
  EXPECT_TRUE(answer_.hasHead());
  take({"X-Trailer: x"});
  EXPECT_TRUE(answer_.hasHead());
}

TEST_F(FetchAnswerTest, OneCodingIsTakenAndMoreAreNot) {
  const std::vector<std::vector<std::string>> taken{
      {"Content-Encoding: gzip"},
      {"Content-Encoding: identity, gzip"},
      {"Content-Encoding: , gzip ,", "Transfer-Encoding: chunked"},
      {"Transfer-Encoding: gzip, Chunked"},
      {"Content-Encoding: IDENTITY", "Content-Encoding: br"},
      {"Content-Encoding:"},
      {"X-Content-Encoding: gzip, gzip"},
  };
  for (const auto& lines : taken) {
    take({"HTTP/1.1 200 OK"});
    EXPECT_EQ(take(lines), lines.size()) << lines[0];
  }
  const std::vector<std::vector<std::string>> refused{
      {"Content-Encoding: gzip, gzip"},
      {"content-encoding: gzip,br"},
      {"Content-Encoding: gzip", "CONTENT-ENCODING:deflate"},
      {"Content-Encoding: gzip", "Transfer-Encoding: gzip, chunked"},
      {"Transfer-Encoding: gzip, gzip, chunked"},
      {"Content-Encoding: a", "Content-Encoding: identity", "Content-Encoding: b"},
  };
  for (const auto& lines : refused) {
    take({"HTTP/1.1 200 OK"});
    EXPECT_LT(take(lines), lines.size()) << lines[0];
    EXPECT_EQ(answer_.failure(), FetchFailure::other);
  }
}

TEST_F(FetchAnswerTest, HeadersAreBoundedOverAllAnswers) {
  const std::string line(64 * 1024, 'x');
  FetchAnswer next(1000, spent_);
  EXPECT_TRUE(answer_.takeHeader(line));
  EXPECT_TRUE(answer_.takeHeader(line));
  EXPECT_TRUE(next.takeHeader(line));
  EXPECT_TRUE(next.takeHeader(line));
  EXPECT_FALSE(next.takeHeader("x"));
  EXPECT_EQ(next.failure(), FetchFailure::tooLarge);
}

TEST_F(FetchAnswerTest, BodiesAreBoundedOverAllAnswers) {
  take({"HTTP/1.1 302 Found", "Location: /next"});
  EXPECT_TRUE(answer_.takeBody(std::string(600, 'x')));
  FetchAnswer next(1000, spent_);
  EXPECT_TRUE(next.takeBody(std::string(400, 'x')));
  EXPECT_EQ(next.body().size(), 400U);
  EXPECT_TRUE(next.takeBody(""));
  EXPECT_FALSE(next.takeBody("x"));
  EXPECT_EQ(next.failure(), FetchFailure::tooLarge);
}

TEST_F(FetchAnswerTest, ABodyOfNothingIsBoundedByWhatCame) {
  EXPECT_TRUE(answer_.noteReceived(100'000));
  EXPECT_TRUE(answer_.noteReceived(100'000)) << "the same bytes again";
  EXPECT_TRUE(answer_.noteReceived(131'072));
  EXPECT_FALSE(answer_.noteReceived(131'074));
  EXPECT_EQ(answer_.failure(), FetchFailure::tooLarge);
  FetchSpending spent;
  FetchAnswer large(1'000'000, spent);
  EXPECT_TRUE(large.noteReceived(2'000'001));
  EXPECT_FALSE(large.noteReceived(2'000'002));
}

}  // namespace
}  // namespace tamzo::testing
