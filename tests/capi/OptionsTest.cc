// The hooks of C, each as the parser calls it.

#include "capi/Options.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "capi/Boundary.h"

namespace tamzo::capi {
namespace {

class Options : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(tamzo_vast_options_create(&options_), TAMZO_VAST_OK); }
  void TearDown() override {
    tamzo_vast_set_debug_enabled(false);
    tamzo_vast_options_release(options_);
  }

  // The URL that a Wrapper's tag is fetched by.
  std::string fetchedUrl(const std::string& tag) {
    std::string url;
    tamzo_vast_options_set_reader(
        options_,
        [](void* user, const tamzo_vast_request* request, tamzo_vast_reply*) {
          *static_cast<std::string*>(user) = viewOf(tamzo_vast_request_url(request));
          return false;
        },
        &url, nullptr);
    parse("<VAST version='3.0'><Ad><Wrapper><VASTAdTagURI>" + tag +
          "</VASTAdTagURI></Wrapper></Ad></VAST>");
    return url;
  }

  void parse(const std::string& response) {
    tamzo_vast_ad* ad = nullptr;
    ASSERT_EQ(tamzo_vast_parse(response.data(), response.size(), options_, &ad), TAMZO_VAST_OK);
    tamzo_vast_ad_release(ad);
  }

  tamzo_vast_options* options_ = nullptr;
};

TEST_F(Options, ClockIsAsked) {
  tamzo_vast_options_set_clock(
      options_, [](void*) { return std::int64_t{1500}; }, nullptr, nullptr);
  EXPECT_EQ(fetchedUrl("http://a/[TIMESTAMP]"), "http://a/1970-01-01T00%3A00%3A01.500%2B00%3A00");
}

TEST_F(Options, MomentThatTheClockCannotHoldIsBounded) {
  for (const std::int64_t moment :
       {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
    auto user = moment;
    tamzo_vast_options_set_clock(
        options_, [](void* at) { return *static_cast<std::int64_t*>(at); }, &user, nullptr);
    EXPECT_NE(fetchedUrl("http://a/[TIMESTAMP]"), "");
  }
}

TEST_F(Options, RandomNumberIsAsked) {
  tamzo_vast_options_set_random(
      options_, [](void*, std::uint32_t bound) { return bound - 1; }, nullptr, nullptr);
  EXPECT_EQ(fetchedUrl("http://a/[CACHEBUSTING]"), "http://a/99999999");
}

TEST_F(Options, MacrosAreFilled) {
  tamzo_vast_options_set_macros(
      options_,
      [](void*, tamzo_vast_text text, tamzo_vast_reply* reply) {
        const std::string filled = std::string(viewOf(text)) + "!";
        return tamzo_vast_reply_set_bytes(reply, filled.data(), filled.size()) == TAMZO_VAST_OK;
      },
      nullptr, nullptr);
  EXPECT_EQ(fetchedUrl("http://a/"), "http://a/!");
}

TEST_F(Options, LogIsTold) {
  std::vector<std::string> lines;
  tamzo_vast_options_set_log(
      options_,
      [](void* user, tamzo_vast_text line) {
        static_cast<std::vector<std::string>*>(user)->emplace_back(viewOf(line));
      },
      &lines, nullptr);
  parse("<VAST/>");
  EXPECT_TRUE(lines.empty());
  tamzo_vast_set_debug_enabled(true);
  parse("<VAST/>");
  EXPECT_FALSE(lines.empty());
}

TEST_F(Options, DeadlineAndLimitsReachTheReader) {
  struct Asked {
    double seconds = 0;
    std::size_t bytes = 0;
  } asked;
  tamzo_vast_options_set_deadline(options_, 3);
  tamzo_vast_options_set_max_bytes(options_, 1000, 2000);
  tamzo_vast_options_set_reader(
      options_,
      [](void* user, const tamzo_vast_request* request, tamzo_vast_reply*) {
        *static_cast<Asked*>(user) = {tamzo_vast_request_seconds_left(request),
                                      tamzo_vast_request_max_bytes(request)};
        return false;
      },
      &asked, nullptr);
  parse("http://a.example");
  EXPECT_LE(asked.seconds, 3);
  EXPECT_GT(asked.seconds, 0);
  EXPECT_EQ(asked.bytes, 1000U);
}

TEST_F(Options, NullFunctionBringsTheDefaultBackAndReleasesAtOnce) {
  int releases = 0;
  const auto count = [](void* user) { ++*static_cast<int*>(user); };
  const auto random = [](void*, std::uint32_t) { return std::uint32_t{0}; };
  tamzo_vast_options_set_random(options_, random, &releases, count);
  EXPECT_EQ(releases, 0);
  tamzo_vast_options_set_random(options_, nullptr, &releases, count);
  EXPECT_EQ(releases, 2);
  EXPECT_FALSE(options_->host.random);
}

TEST_F(Options, WhatCannotBeSentIsRefusedAndChangesNothing) {
  const tamzo_vast_text nil{nullptr, 0};
  EXPECT_EQ(tamzo_vast_options_set_user_agent(options_, tamzo_vast_text_of("app/1")),
            TAMZO_VAST_OK);
  EXPECT_EQ(tamzo_vast_options_set_user_agent(options_, tamzo_vast_text_of("a\nb")),
            TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT_EQ(options_->host.fetchOptions.userAgent, "app/1");
  EXPECT_EQ(tamzo_vast_options_add_header(options_, nil, nil, nil), TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT_TRUE(options_->host.fetchOptions.headers.empty());
  EXPECT_EQ(tamzo_vast_options_add_header(options_, tamzo_vast_text_of("X"), nil,
                                          tamzo_vast_text_of("a.example")),
            TAMZO_VAST_OK);
  ASSERT_EQ(options_->host.fetchOptions.headers.size(), 1U);
  EXPECT_EQ(options_->host.fetchOptions.headers[0].hosts,
            std::vector<std::string>{std::string("a.example")});
}

}  // namespace
}  // namespace tamzo::capi
