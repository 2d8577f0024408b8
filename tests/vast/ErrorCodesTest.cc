#include "tamzo/vast/ErrorCodes.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <set>
#include <string_view>
#include <vector>

namespace tamzo::testing {
namespace {

TEST(ErrorCodesTest, AreTheseInAscendingOrder) {
  std::vector<std::int32_t> codes;
  for (const VastError& error : vastErrors()) {
    codes.push_back(error.code);
  }
  EXPECT_EQ(codes, (std::vector<std::int32_t>{kNoError, kException, kNotXml, kBadVersion,
                                              kCategoryBlocked, kNoWrapperOrInLine, kEmptyContent,
                                              kWrapperLimit, kNoAd, kNoUsableLinear}));
  EXPECT_EQ(codes, (std::vector<std::int32_t>{0, 100, 101, 102, 205, 300, 301, 302, 303, 405}));
}

TEST(ErrorCodesTest, EachHasANameOfItsOwnAndACause) {
  std::set<std::string_view> names;
  std::set<std::string_view> causes;
  for (const VastError& error : vastErrors()) {
    EXPECT_FALSE(error.name.empty()) << error.code;
    EXPECT_FALSE(error.cause.empty()) << error.code;
    EXPECT_TRUE(names.insert(error.name).second) << error.name;
    EXPECT_TRUE(causes.insert(error.cause).second) << error.cause;
  }
}

TEST(ErrorCodesTest, AreFoundByTheirCodeAndNoOtherIs) {
  std::size_t found = 0;
  for (std::int32_t code = -1; code <= 1000; ++code) {
    const VastError* error = findVastError(code);
    found += error == nullptr ? 0 : 1;
    EXPECT_TRUE(error == nullptr || error->code == code) << code;
  }
  EXPECT_EQ(found, vastErrors().size());
  EXPECT_EQ(findVastError(kNotXml)->name, "not XML");
  EXPECT_EQ(findVastError(std::numeric_limits<std::int32_t>::min()), nullptr);
  EXPECT_EQ(findVastError(std::numeric_limits<std::int32_t>::max()), nullptr);
}

TEST(ErrorCodesTest, SuccessPromisesNothingToPlay) {
  const std::string_view cause = findVastError(kNoError)->cause;
  EXPECT_EQ(cause.find("play"), std::string_view::npos) << cause;
}

}  // namespace
}  // namespace tamzo::testing
