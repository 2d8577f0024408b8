#include "net/PublicAddress.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tamzo {
namespace {

using V4 = std::uint32_t;
using V6 = std::array<std::uint8_t, 16>;

struct V4Range {
  V4 first;
  unsigned bits;
};

constexpr V4 v4(V4 a, V4 b, V4 c, V4 d) noexcept { return a << 24U | b << 16U | c << 8U | d; }

// IANA's registry of special-purpose addresses, and what is no single host's.
constexpr std::array<V4Range, 14> kSpecialV4{{
    {v4(0, 0, 0, 0), 8},        // this network
    {v4(10, 0, 0, 0), 8},       // private
    {v4(100, 64, 0, 0), 10},    // shared behind a carrier's NAT
    {v4(127, 0, 0, 0), 8},      // loopback
    {v4(169, 254, 0, 0), 16},   // link-local; clouds tell their secrets there
    {v4(172, 16, 0, 0), 12},    // private
    {v4(192, 0, 0, 0), 24},     // protocol assignments
    {v4(192, 0, 2, 0), 24},     // documents
    {v4(192, 88, 99, 0), 24},   // 6to4 relays
    {v4(192, 168, 0, 0), 16},   // private
    {v4(198, 18, 0, 0), 15},    // benchmarks
    {v4(198, 51, 100, 0), 24},  // documents
    {v4(203, 0, 113, 0), 24},   // documents
    {v4(224, 0, 0, 0), 3},      // multicast, reserved, broadcast
}};

struct V6Range {
  V6 first;
  unsigned bits;
};

// Of 2000::/3, which is all that is public.
constexpr std::array<V6Range, 4> kSpecialV6{{
    {{0x20, 0x01, 0x00, 0x00}, 23},  // protocols, Teredo, ORCHID, benchmarks
    {{0x20, 0x01, 0x0D, 0xB8}, 32},  // documents
    {{0x3F, 0xFE}, 16},              // 6bone, given back
    {{0x3F, 0xFF}, 20},              // documents
}};

constexpr V6Range kGlobalUnicast{{0x20}, 3};
constexpr V6Range k6to4{{0x20, 0x02}, 16};
constexpr V6Range kNat64{{0x00, 0x64, 0xFF, 0x9B}, 96};
constexpr V6Range kNat64Local{{0x00, 0x64, 0xFF, 0x9B, 0x00, 0x01}, 48};
constexpr V6Range kMapped{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF}, 96};

bool isIn(const V6Range& range, const V6& address) noexcept {
  const std::size_t whole = range.bits / 8;
  if (!std::equal(address.begin(), address.begin() + whole, range.first.begin())) {
    return false;
  }
  const unsigned rest = range.bits % 8;
  return rest == 0 || (address[whole] ^ range.first[whole]) >> (8U - rest) == 0;
}

bool isPublicV4(V4 address) noexcept {
  return std::none_of(kSpecialV4.begin(), kSpecialV4.end(), [address](const V4Range& range) {
    return (address ^ range.first) >> (32U - range.bits) == 0;
  });
}

V4 v4At(const V6& address, std::size_t at) noexcept {
  return v4(address[at], address[at + 1], address[at + 2], address[at + 3]);
}

// ISATAP puts the IPv4 address behind 0000:5EFE or 0200:5EFE, under any prefix.
bool isIsatap(const V6& address) noexcept {
  return (address[8] | 2U) == 2U && address[9] == 0 && address[10] == 0x5E && address[11] == 0xFE;
}

bool isPublicV6(const V6& address) noexcept {
  if (isIn(kMapped, address) || isIn(kNat64, address)) {
    return isPublicV4(v4At(address, 12));
  }
  if (isIn(kNat64Local, address) || !isIn(kGlobalUnicast, address)) {
    return false;
  }
  if (isIn(k6to4, address)) {
    return isPublicV4(v4At(address, 2));
  }
  if (isIsatap(address) && !isPublicV4(v4At(address, 12))) {
    return false;
  }
  return std::none_of(kSpecialV6.begin(), kSpecialV6.end(),
                      [&address](const V6Range& range) { return isIn(range, address); });
}

}  // namespace

bool isPublicAddress(const sockaddr* address) noexcept {
  if (address == nullptr) {
    return false;
  }
  if (address->sa_family == AF_INET) {
    sockaddr_in in{};
    std::memcpy(&in, address, sizeof in);
    return isPublicV4(ntohl(in.sin_addr.s_addr));
  }
  if (address->sa_family == AF_INET6) {
    sockaddr_in6 in{};
    std::memcpy(&in, address, sizeof in);
    V6 bytes{};
    std::memcpy(bytes.data(), &in.sin6_addr, bytes.size());
    return isPublicV6(bytes);
  }
  return false;
}

bool isPublicAddress(const char* text) noexcept {
  in_addr in{};
  if (inet_pton(AF_INET, text, &in) == 1) {
    return isPublicV4(ntohl(in.s_addr));
  }
  V6 bytes{};
  return inet_pton(AF_INET6, text, bytes.data()) == 1 && isPublicV6(bytes);
}

}  // namespace tamzo
