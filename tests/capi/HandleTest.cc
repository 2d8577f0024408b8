// An object that is used after its release.

#include "capi/Handle.h"

#include <gtest/gtest.h>

#include "tamzo/tamzo_vast.h"

namespace tamzo::capi {
namespace {

#ifndef NDEBUG

TEST(HandleDeathTest, UseAfterReleaseEndsTheProgramAndNamesTheFunction) {
  tamzo_vast_ad* ad = nullptr;
  ASSERT_EQ(tamzo_vast_parse("<VAST/>", 7, nullptr, &ad), TAMZO_VAST_OK);
  tamzo_vast_ad_release(ad);
  EXPECT_DEATH(tamzo_vast_ad_adID(ad), "tamzo_vast_ad_adID: the object was released");
  EXPECT_DEATH(tamzo_vast_ad_release(ad), "tamzo_vast_ad_release: the object was released");

  tamzo_vast_options* options = nullptr;
  ASSERT_EQ(tamzo_vast_options_create(&options), TAMZO_VAST_OK);
  tamzo_vast_options_release(options);
  EXPECT_DEATH(tamzo_vast_parse("<VAST/>", 7, options, &ad), "tamzo_vast_parse: the object was");
}

TEST(HandleDeathTest, WhatIsNoObjectOfTheLibraryEndsTheProgram) {
  int other = 0;
  EXPECT_DEATH(tamzo_vast_ad_errorCode(reinterpret_cast<tamzo_vast_ad*>(&other)),
               "tamzo_vast_ad_errorCode: .* is none of this library");
}

#endif

TEST(Handle, NullIsNone) { EXPECT_TRUE(isNull(nullptr, "test")); }

TEST(Handle, OneThatLivesIsNoNull) {
  const Handle handle;
  EXPECT_FALSE(isNull(&handle, "test"));
}

}  // namespace
}  // namespace tamzo::capi
