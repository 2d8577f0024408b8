#include "tamzo/sdk/TamzoWebSettings.h"

#include <gtest/gtest.h>

namespace tamzo::testing {
namespace {

struct Flag {
  const char* name;
  bool (TamzoWebSettings::*get)() const noexcept;
  void (TamzoWebSettings::*set)(bool) noexcept;
};

constexpr Flag kFlags[] = {
    {"canZoom", &TamzoWebSettings::canZoom, &TamzoWebSettings::setCanZoom},
    {"canOpenExternal", &TamzoWebSettings::canOpenExternal, &TamzoWebSettings::setCanOpenExternal},
    {"canAutoPlay", &TamzoWebSettings::canAutoPlay, &TamzoWebSettings::setCanAutoPlay},
    {"canScroll", &TamzoWebSettings::canScroll, &TamzoWebSettings::setCanScroll},
    {"shouldAskPermission", &TamzoWebSettings::shouldAskPermission,
     &TamzoWebSettings::setShouldAskPermission},
};

TEST(TamzoWebSettingsTest, EverythingIsOffUntilItIsSetAndNothingElseWithIt) {
  for (const Flag& set : kFlags) {
    const auto settings = TamzoWebSettings::init();
    for (const Flag& flag : kFlags) {
      EXPECT_FALSE(((*settings).*flag.get)()) << flag.name;
    }
    ((*settings).*set.set)(true);
    for (const Flag& flag : kFlags) {
      EXPECT_EQ(((*settings).*flag.get)(), flag.get == set.get) << set.name << ", " << flag.name;
    }
    ((*settings).*set.set)(false);
    EXPECT_FALSE(((*settings).*set.get)()) << set.name;
  }
}

TEST(TamzoWebSettingsTest, EachIsItsOwn) {
  const auto one = TamzoWebSettings::init();
  const auto other = TamzoWebSettings::init();
  one->setCanZoom(true);
  EXPECT_FALSE(other->canZoom());
}

}  // namespace
}  // namespace tamzo::testing
