// The reader of a build without libcurl. The tests are built with it, so that the unit is compiled
// here once more, under a name of its own.

#define fetchWithCurl fetchWithoutCurl
#define closeIdleCurlConnections closeNoConnections
#include "net/NoCurlReader.cc"
#undef closeIdleCurlConnections
#undef fetchWithCurl

#include <gtest/gtest.h>

#include <optional>

#include "tests/support/HttpServer.h"

namespace tamzo::testing {
namespace {

TEST(NoCurlReaderTest, EveryReadFailsAndNobodyIsAsked) {
  HttpServer server;
  server.serve("/x", "body");
  FetchRequest request;
  EXPECT_EQ(fetchWithoutCurl(request).failure, FetchFailure::other);
  request.url = Text(server.url("/x"));
  const FetchResult result = fetchWithoutCurl(request);
  EXPECT_EQ(result.failure, FetchFailure::other);
  EXPECT_EQ(result.body, std::nullopt);
  EXPECT_EQ(result.finalUrl, server.url("/x"));
  closeNoConnections();
  EXPECT_TRUE(server.requests().empty());
}

}  // namespace
}  // namespace tamzo::testing
