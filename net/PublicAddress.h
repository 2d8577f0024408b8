#pragma once

struct sockaddr;

namespace tamzo {

/// True for an address of the public Internet that one host may have: not loopback, private,
/// link-local, shared, reserved for documents and tests, or multicast. An IPv6 address that holds
/// an IPv4 one (mapped, NAT64, 6to4, ISATAP) is as public as that; a Teredo address is not. False
/// for any other family, and for null.
bool isPublicAddress(const sockaddr* address) noexcept;

/// The same for an address as text, without brackets or port; false for what is none.
bool isPublicAddress(const char* text) noexcept;

}  // namespace tamzo
