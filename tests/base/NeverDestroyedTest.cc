#include "base/NeverDestroyed.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace tamzo::testing {
namespace {

struct Counted {
  Counted() { ++alive; }
  ~Counted() { --alive; }
  int value = 7;
  static inline int alive = 0;
};

TEST(NeverDestroyedTest, LeavesItsValueAlone) {
  static_assert(std::is_trivially_destructible_v<NeverDestroyed<Counted>>);
  {
    NeverDestroyed<Counted> held;
    EXPECT_EQ((*held).value, 7);
    (*held).value = 8;
    EXPECT_EQ((*held).value, 8);
  }
  EXPECT_EQ(Counted::alive, 1);
}

}  // namespace
}  // namespace tamzo::testing
