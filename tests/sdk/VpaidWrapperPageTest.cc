#include "sdk/VpaidWrapperPage.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string_view>

#include "tamzo/sdk/TamzoAssetsManager.h"

namespace tamzo::testing {
namespace {

TEST(VpaidWrapperPageTest, IsAWholePageWithItsPlaceholders) {
  const std::string_view page = vpaidWrapperPage();
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>"));
  EXPECT_EQ(page.find('\0'), std::string_view::npos);
  for (const std::string_view placeholder :
       {"{{IS_TAG_A_URL}}", "{{VAST_TAG}}", "{{MOAT_DATA}}", "{{MOAT_PARTNER_CODE}}"}) {
    EXPECT_NE(page.find(placeholder), std::string_view::npos) << placeholder;
  }
}

TEST(VpaidWrapperPageTest, HasNoPlaceholderThatNobodyFills) {
  std::string_view rest = vpaidWrapperPage();
  for (std::size_t at = rest.find("{{"); at != std::string_view::npos; at = rest.find("{{")) {
    rest.remove_prefix(at);
    EXPECT_TRUE(rest.starts_with("{{IS_TAG_A_URL}}") || rest.starts_with("{{VAST_TAG}}") ||
                rest.starts_with("{{MOAT_DATA}}") || rest.starts_with("{{MOAT_PARTNER_CODE}}"))
        << rest.substr(0, 40);
    rest.remove_prefix(2);
  }
}

TEST(VpaidWrapperPageTest, WhatAdServersSendStandsInTheLastElementWhichHasNoEnd) {
  const std::string_view page = vpaidWrapperPage();
  const std::string_view values = page.substr(page.find("<plaintext"));
  EXPECT_EQ(
      values,
      "<plaintext id=\"tag\" hidden>{{VAST_TAG}}\x1F{{MOAT_DATA}}\x1F{{MOAT_PARTNER_CODE}}\x1F\n");
  EXPECT_EQ(page.substr(0, page.size() - values.size()).find("{{VAST_TAG}}"),
            std::string_view::npos);
}

TEST(VpaidWrapperPageTest, HasFortyKilobytesAtMost) {
  EXPECT_LE(vpaidWrapperPage().size(), std::size_t{40} << 10U);
}

TEST(VpaidWrapperPageTest, IsHandedOutWithoutBeingCopied) {
  EXPECT_EQ(TamzoAssetsManager::getVpaidWrapperData().view().data(), vpaidWrapperPage().data());
}

}  // namespace
}  // namespace tamzo::testing
