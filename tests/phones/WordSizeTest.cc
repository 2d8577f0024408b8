// That the tests run on the kind of machine they were built for. What such a machine does
// otherwise, all other tests show: size_t of 32 bits, char without a sign, and, since the sanitizer
// watches, alignment.

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>

namespace tamzo::testing {
namespace {

TEST(WordSizeTest, TheMachineIsTheOneAskedFor) {
  EXPECT_EQ(sizeof(std::size_t) * 8, std::size_t{TAMZO_WORD_BITS});
  EXPECT_FALSE(std::numeric_limits<char>::is_signed);
}

}  // namespace
}  // namespace tamzo::testing
