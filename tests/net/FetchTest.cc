#include "tamzo/net/Fetch.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace tamzo::testing {
namespace {

TEST(FetchFailureTest, HasAName) {
  const std::vector<std::pair<FetchFailure, const char*>> rows{
      {FetchFailure::none, ""},
      {FetchFailure::dns, "dns"},
      {FetchFailure::connect, "connect"},
      {FetchFailure::tls, "tls"},
      {FetchFailure::timeout, "timeout"},
      {FetchFailure::tooLarge, "too-large"},
      {FetchFailure::status, "status"},
      {FetchFailure::redirects, "redirects"},
      {FetchFailure::protocol, "protocol"},
      {FetchFailure::cutOff, "cut-off"},
      {FetchFailure::notUtf8, "not-utf8"},
      {FetchFailure::empty, "empty"},
      {FetchFailure::cancelled, "cancelled"},
      {FetchFailure::other, "other"},
  };
  for (const auto& [failure, name] : rows) {
    EXPECT_EQ(fetchFailureName(failure), name);
  }
}

FetchOptions withHeader(std::string name, std::string value) {
  FetchOptions options;
  options.headers.push_back({std::move(name), std::move(value), {}});
  return options;
}

TEST(FetchOptionsTest, TheDefaultsCanBeSent) { EXPECT_EQ(whyRefused(FetchOptions()), ""); }

TEST(FetchOptionsTest, AHeaderIsOneLineAndItsNameAToken) {
  for (const char* name : {"X-App", "a", "!#$%&'*+-.^_`|~09", "User-Agent", "Cookie", "Accept"}) {
    EXPECT_EQ(whyRefused(withHeader(name, "any: \t\"\xC3\xA4 value")), "") << name;
    EXPECT_EQ(whyRefused(withHeader(name, "")), "") << name;
  }
  for (const std::string& name :
       {std::string(), std::string("a b"), std::string("a:"), std::string("a\r"),
        std::string("a\n"), std::string("a\0", 2), std::string("\xC3\xA4"), std::string("a,b"),
        std::string("(a)")}) {
    EXPECT_NE(whyRefused(withHeader(name, "x")), "") << name;
  }
  for (const std::string& value :
       {std::string("a\r\nX: b"), std::string("\n"), std::string("\r"), std::string("a\0b", 3)}) {
    EXPECT_NE(whyRefused(withHeader("X-App", value)), "") << value;
  }
}

TEST(FetchOptionsTest, WhatBelongsToTheConnectionIsNoHeaderOfAHost) {
  for (const char* name :
       {"Host", "content-length", "Transfer-Encoding", "CONNECTION", "Upgrade", "TE", "Expect"}) {
    EXPECT_NE(whyRefused(withHeader(name, "x")), "") << name;
  }
}

TEST(FetchOptionsTest, TheOtherTextsAreCheckedToo) {
  FetchOptions agent;
  agent.userAgent = "App/1\r\nX: y";
  EXPECT_NE(whyRefused(agent), "");
  agent.userAgent = "App/1 (\xC3\xA4)";
  EXPECT_EQ(whyRefused(agent), "");
  FetchOptions file;
  file.caFile = std::string("a\0b", 3);
  EXPECT_NE(whyRefused(file), "");
  FetchOptions proxy;
  proxy.proxy = std::string("a\0b", 3);
  EXPECT_NE(whyRefused(proxy), "");
}

TEST(FetchOptionsTest, AProxyAndPublicAddressesExcludeEachOther) {
  FetchOptions options;
  options.publicAddressesOnly = true;
  EXPECT_EQ(whyRefused(options), "");
  options.proxy = "";
  EXPECT_EQ(whyRefused(options), "");
  options.proxy = "http://proxy.example:8080";
  EXPECT_NE(whyRefused(options), "");
}

}  // namespace
}  // namespace tamzo::testing
