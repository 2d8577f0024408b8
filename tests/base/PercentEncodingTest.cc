#include "base/PercentEncoding.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace tamzo::testing {
namespace {

TEST(PercentEncodingTest, EveryByteBecomesTwoCapitalHexadecimalDigits) {
  std::string out = "kept";
  std::string expected = out;
  for (int byte = 0; byte < 256; ++byte) {
    appendPercentEncoded(out, static_cast<char>(byte));
    char escape[4];
    std::snprintf(escape, sizeof escape, "%%%02X", static_cast<unsigned>(byte));
    expected += escape;
  }
  EXPECT_EQ(out, expected);
}

TEST(PercentEncodingTest, LettersAndDigitsAreThoseOfAscii) {
  constexpr std::string_view kAlphanumeric =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    EXPECT_EQ(isAsciiAlphanumeric(c), kAlphanumeric.find(c) != std::string_view::npos) << byte;
  }
}

}  // namespace
}  // namespace tamzo::testing
