#include "sdk/HostFetch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/support/FetchFixture.h"

namespace tamzo::testing {
namespace {

using HostFetchTest = FetchFixture;

FetchRequest requestOf(const Text& url) {
  FetchRequest request;
  request.url = url;
  return request;
}

TEST_F(HostFetchTest, WithoutAReaderOfTheHostsTheDefaultFetches) {
  server_.serve("/x", "body");
  const FetchResult result = fetchByHost(TamzoHost(), requestOf(Text(server_.url("/x"))));
  EXPECT_EQ(result.body, "body");
  EXPECT_EQ(result.failure, FetchFailure::none);
}

TEST_F(HostFetchTest, TheReaderThatIsToldMoreComesFirst) {
  TamzoHost host;
  host.readUrl = [](const Text&) { return std::optional<std::string>("simple"); };
  EXPECT_EQ(fetchByHost(host, requestOf("http://a/")).body, "simple");
  host.fetch = [](const FetchRequest& request) {
    FetchResult result;
    result.status = 203;
    result.body = "hop " + std::to_string(request.hop) + " of " + std::string(request.url.view());
    return result;
  };
  FetchRequest request = requestOf("http://a/");
  request.hop = 3;
  const FetchResult result = fetchByHost(host, request);
  EXPECT_EQ(result.body, "hop 3 of http://a/");
  EXPECT_EQ(result.status, 203);
}

TEST_F(HostFetchTest, AResultIsMadeOfWhatASimpleReaderBrings) {
  std::optional<std::string> body = "four";
  TamzoHost host;
  host.readUrl = [&](const Text&) { return body; };
  FetchResult result = fetchByHost(host, requestOf("http://a/"));
  EXPECT_EQ(result.failure, FetchFailure::none);
  EXPECT_EQ(result.bytes, 4U);
  EXPECT_EQ(result.finalUrl, "http://a/");
  EXPECT_EQ(result.status, 0);
  body = "";
  result = fetchByHost(host, requestOf("http://a/"));
  EXPECT_EQ(result.failure, FetchFailure::empty);
  EXPECT_EQ(result.body, "");
  body.reset();
  result = fetchByHost(host, requestOf("http://a/"));
  EXPECT_EQ(result.failure, FetchFailure::other);
  EXPECT_EQ(result.body, std::nullopt);
}

TEST_F(HostFetchTest, NobodyIsAskedForWhatIsNoUrlOrTooLate) {
  int calls = 0;
  TamzoHost host;
  host.readUrl = [&](const Text&) {
    ++calls;
    return std::optional<std::string>("body");
  };
  EXPECT_EQ(fetchByHost(host, requestOf(Text())).failure, FetchFailure::protocol);
  FetchRequest request = requestOf("http://a/");
  request.deadline = Deadline::in(0.0);
  const FetchResult late = fetchByHost(host, request);
  EXPECT_EQ(late.failure, FetchFailure::timeout);
  EXPECT_EQ(late.cause, FetchCause::chainTime);
  EXPECT_EQ(late.milliseconds.total, 0.0) << "nobody was asked";
  request.cancellation = Cancellation();
  request.cancellation.cancel();
  EXPECT_EQ(fetchByHost(host, request).failure, FetchFailure::cancelled);
  EXPECT_EQ(calls, 0);
}

TEST_F(HostFetchTest, WhatAReaderBringsTooLateHasFailed) {
  FetchRequest request = requestOf("http://a/");
  request.cancellation = Cancellation();
  TamzoHost host;
  host.readUrl = [&](const Text&) {
    request.cancellation.cancel();
    return std::optional<std::string>("body");
  };
  const FetchResult result = fetchByHost(host, request);
  EXPECT_EQ(result.failure, FetchFailure::cancelled);
  EXPECT_EQ(result.body, std::nullopt);
}

TEST_F(HostFetchTest, WhatAReaderBringsAfterTheChainsTimeSaysHowLongItTook) {
  FetchRequest request = requestOf("http://a/");
  request.deadline = Deadline::in(0.02);
  TamzoHost host;
  host.readUrl = [&](const Text&) {
    while (!request.deadline.isPast()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return std::optional<std::string>("body");
  };
  const FetchResult result = fetchByHost(host, request);
  EXPECT_EQ(result.failure, FetchFailure::timeout);
  EXPECT_EQ(result.cause, FetchCause::chainTime);
  EXPECT_GT(result.milliseconds.total, 0.0);
  EXPECT_EQ(result.body, std::nullopt);
}

TEST_F(HostFetchTest, AReaderWithoutMemoryHasFailedAndOtherExceptionsPass) {
  TamzoHost host;
  host.readUrl = [](const Text&) -> std::optional<std::string> { throw std::bad_alloc(); };
  EXPECT_EQ(fetchByHost(host, requestOf("http://a/")).failure, FetchFailure::other);
  host.fetch = [](const FetchRequest&) -> FetchResult { throw std::bad_alloc(); };
  EXPECT_EQ(fetchByHost(host, requestOf("http://a/")).failure, FetchFailure::other);
  host.fetch = [](const FetchRequest&) -> FetchResult { throw std::runtime_error("x"); };
  EXPECT_THROW(fetchByHost(host, requestOf("http://a/")), std::runtime_error);
}

}  // namespace
}  // namespace tamzo::testing
