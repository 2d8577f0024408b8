#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tamzo {

// The pieces that JSON text is made of.

/// Appends a string in its quotes. Bytes that are not UTF-8 become U+FFFD.
void appendJsonString(std::string& out, std::string_view text);

/// Appends the shortest text that reads back as the same value, of a float as the same 32-bit one;
/// "inf", "-inf" or "nan" as a string.
void appendJsonNumber(std::string& out, double number);
void appendJsonNumber(std::string& out, float number);
void appendJsonNumber(std::string& out, std::int64_t number);
void appendJsonNumber(std::string& out, std::uint64_t number);

/// Appends a finite number so that readers who tell integers from other numbers do not take it for
/// one: 150.0.
void appendJsonFraction(std::string& out, double number);

/// Bytes from `begin` on that stand in a JSON string as they are: up to a quote, a backslash, a
/// control character or the end.
std::size_t plainJsonBytes(const char* begin, const char* end) noexcept;

}  // namespace tamzo
