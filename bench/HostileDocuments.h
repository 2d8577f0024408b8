#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tamzo::bench {

/// A response of about `bytes` bytes that is built to cost a reader more than its size: time, or
/// memory, or depth of the stack.
struct HostileShape {
  std::string_view name;
  std::string (*make)(std::size_t bytes);
  /// How a parse of 1 MB of it must end. (A much longer one may end in 101 instead, where a part
  /// of it passes the length that libxml2 accepts.)
  std::int32_t errorCode;
};

std::span<const HostileShape> hostileShapes() noexcept;

/// Answers of an HTTP server, from the status line on, with `bytes` of headers, or of trailers
/// after a chunked body.
std::string endlessHttpHeaders(std::size_t bytes);
std::string endlessChunkTrailers(std::size_t bytes);

}  // namespace tamzo::bench
