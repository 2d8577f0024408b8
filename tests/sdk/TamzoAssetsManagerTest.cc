#include "tamzo/sdk/TamzoAssetsManager.h"

#include <gtest/gtest.h>

#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using TamzoAssetsManagerTest = SdkTest;

TEST_F(TamzoAssetsManagerTest, TheTemplateOfAHostReplacesTheSdks) {
  const Text own = TamzoAssetsManager::getVpaidWrapperData();
  EXPECT_TRUE(own.hasCharacters());
  useTemplateFrom([] { return Text("mine"); });
  EXPECT_EQ(TamzoAssetsManager::getVpaidWrapperData(), "mine");
  useTemplateFrom([] { return Text(); });
  EXPECT_TRUE(TamzoAssetsManager::getVpaidWrapperData().isNil());
  useTemplateFrom({});
  EXPECT_EQ(TamzoAssetsManager::getVpaidWrapperData(), own);
}

}  // namespace
}  // namespace tamzo::testing
