#include "tamzo/base/List.h"

#include <gtest/gtest.h>

#include <string>

namespace tamzo::testing {
namespace {

TEST(ListTest, MayBeNilWhichIsNotEmpty) {
  const List<int> nil;
  EXPECT_EQ(nil, nullptr);
  const List<int> empty = makeList<int>();
  ASSERT_NE(empty, nullptr);
  EXPECT_TRUE(empty->empty());
}

TEST(ListTest, IsSharedByItsCopiesAndByNoOther) {
  const List<std::string> list = makeList<std::string>();
  const List<std::string> copy = list;
  copy->emplace_back("a");
  EXPECT_EQ(list->size(), 1U);
  EXPECT_NE(makeList<std::string>(), list);
  EXPECT_TRUE(makeList<std::string>()->empty());
}

}  // namespace
}  // namespace tamzo::testing
