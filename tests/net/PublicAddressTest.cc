#include "net/PublicAddress.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>
#include <string>

namespace tamzo::testing {
namespace {

// As the system gives a resolved address.
bool isPublicSocketAddress(const char* text) {
  sockaddr_storage storage{};
  sockaddr_in in{};
  sockaddr_in6 in6{};
  if (inet_pton(AF_INET, text, &in.sin_addr) == 1) {
    in.sin_family = AF_INET;
    std::memcpy(&storage, &in, sizeof in);
  } else if (inet_pton(AF_INET6, text, &in6.sin6_addr) == 1) {
    in6.sin6_family = AF_INET6;
    std::memcpy(&storage, &in6, sizeof in6);
  } else {
    ADD_FAILURE() << text << " is no address";
  }
  return isPublicAddress(reinterpret_cast<const sockaddr*>(&storage));
}

TEST(PublicAddressTest, WhatOneHostOfTheInternetMayHaveIsPublic) {
  for (const char* text :
       {"1.1.1.1",         "8.8.8.8",           "9.255.255.255",    "11.0.0.0",
        "100.63.255.255",  "100.128.0.0",       "126.255.255.255",  "128.0.0.0",
        "169.253.255.255", "169.255.0.0",       "172.15.255.255",   "172.32.0.0",
        "191.255.255.255", "192.0.1.0",         "192.0.3.0",        "192.88.98.255",
        "192.88.100.0",    "192.167.255.255",   "192.169.0.0",      "198.17.255.255",
        "198.20.0.0",      "198.51.99.255",     "198.51.101.0",     "203.0.112.255",
        "203.0.114.0",     "223.255.255.255",   "2001:200::1",      "2001:4860:4860::8888",
        "2001:db7::1",     "2001:db9::1",       "2606:4700::1111",  "2a00:1450:4001::1",
        "3ffd::1",         "::ffff:8.8.8.8",    "64:ff9b::8.8.8.8", "2002:808:808::1",
        "2003::1",         "2400::5efe:808:808"}) {
    EXPECT_TRUE(isPublicAddress(text)) << text;
    EXPECT_TRUE(isPublicSocketAddress(text)) << text;
  }
}

TEST(PublicAddressTest, EverythingElseIsNot) {
  for (const char* text :
       {// this network, loopback
        "0.0.0.0", "0.255.255.255", "127.0.0.1", "127.255.255.255", "::", "::1",
        // private, shared, link-local
        "10.0.0.0", "10.255.255.255", "172.16.0.0", "172.31.255.255", "192.168.0.1",
        "192.168.255.255", "100.64.0.0", "100.127.255.255", "169.254.0.0", "169.254.169.254",
        "169.254.255.255", "fc00::1", "fdff::1", "fd00:ec2::254", "fe80::1", "febf::1", "fec0::1",
        // documents, benchmarks, protocols
        "192.0.0.0", "192.0.0.170", "192.0.2.1", "198.18.0.0", "198.19.255.255", "198.51.100.1",
        "203.0.113.255", "192.88.99.1", "2001:db8::1", "2001:2::1", "2001:10::1", "2001:20::1",
        "3fff::1", "3fff:fff::1", "3ffe::1", "100::1", "5f00::1",
        // multicast, reserved, broadcast
        "224.0.0.1", "239.255.255.255", "240.0.0.1", "255.255.255.255", "ff02::1", "ff0e::1",
        // IPv4 in IPv6
        "::ffff:127.0.0.1", "::ffff:10.0.0.1", "::ffff:169.254.169.254", "::127.0.0.1", "::8.8.8.8",
        "64:ff9b::127.0.0.1", "64:ff9b::a00:1", "64:ff9b:1::808:808",
        "2002:7f00:1::", "2002:a00:1::1", "2002:c0a8:1::1", "2001::1", "2001:0:a00:1::f7f7:f7f7",
        "2001:0:808:808:0:0:f5ff:fffe", "2400::5efe:10.0.0.1", "2400::200:5efe:127.0.0.1",
        "::ffff:0:8.8.8.8",
        // of no use yet
        "4000::1", "8000::1", "1::1"}) {
    EXPECT_FALSE(isPublicAddress(text)) << text;
    EXPECT_FALSE(isPublicSocketAddress(text)) << text;
  }
}

TEST(PublicAddressTest, WhatIsNoAddressIsNotPublic) {
  for (const char* text : {"", "8.8.8", "8.8.8.8:80", "[2a00::1]", "dns.example", "2130706433"}) {
    EXPECT_FALSE(isPublicAddress(text)) << text;
  }
  EXPECT_FALSE(isPublicAddress(static_cast<const sockaddr*>(nullptr)));
  sockaddr_storage local{};
  local.ss_family = AF_UNIX;
  EXPECT_FALSE(isPublicAddress(reinterpret_cast<const sockaddr*>(&local)));
}

}  // namespace
}  // namespace tamzo::testing
