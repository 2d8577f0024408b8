#include "net/FailedFetch.h"

#include <gtest/gtest.h>

namespace tamzo::testing {
namespace {

TEST(FailedFetchTest, TellsOfTheUrlAndWhyAndOfNothingElse) {
  const FetchResult result =
      failedFetch("http://a/", FetchFailure::timeout, FetchCause::connectTime);
  EXPECT_EQ(result.finalUrl, "http://a/");
  EXPECT_EQ(result.failure, FetchFailure::timeout);
  EXPECT_EQ(result.cause, FetchCause::connectTime);
  EXPECT_EQ(result.body, std::nullopt);
  EXPECT_EQ(result.status, 0);
}

TEST(FailedFetchTest, HasNoUrlWhereThereIsNone) {
  const FetchResult result = failedFetch(Text(), FetchFailure::protocol);
  EXPECT_EQ(result.finalUrl, "");
  EXPECT_EQ(result.cause, FetchCause::none);
}

}  // namespace
}  // namespace tamzo::testing
