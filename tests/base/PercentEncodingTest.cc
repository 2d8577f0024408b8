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

}  // namespace
}  // namespace tamzo::testing
