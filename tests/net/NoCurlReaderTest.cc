// The reader of a build without libcurl. The tests are built with it, so that the unit is compiled
// here once more, under a name of its own.

#define readWithCurl readWithoutCurl
#include "net/NoCurlReader.cc"
#undef readWithCurl

#include <gtest/gtest.h>

#include <optional>

#include "tests/support/HttpServer.h"

namespace tamzo::testing {
namespace {

TEST(NoCurlReaderTest, EveryReadFailsAndNobodyIsAsked) {
  HttpServer server;
  server.serve("/x", "body");
  EXPECT_EQ(readWithoutCurl(Text(server.url("/x")), {}), std::nullopt);
  EXPECT_EQ(readWithoutCurl(Text(), {}), std::nullopt);
  EXPECT_TRUE(server.requests().empty());
}

}  // namespace
}  // namespace tamzo::testing
