#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/SdkFixture.h"

namespace tamzo::testing {

using UrlsAndOffsets = std::vector<std::pair<std::string, std::string>>;

// A record whose updaters are called one by one.
class UpdaterTest : public SdkTest {
 protected:
  UpdaterTest() : ad_(TamzoVastAd::initWithVast("")) {}

  // What is listed under a name, as URL and offset.
  UrlsAndOffsets trackers(std::string_view name) const {
    UrlsAndOffsets found;
    const TrackerList events = ad_->trackers()->find(name);
    EXPECT_NE(events, nullptr) << name;
    if (events != nullptr) {
      for (const auto& event : *events) {
        EXPECT_FALSE(event->offset().isNil()) << name;
        found.emplace_back(event->url().view(), event->offset().view());
      }
    }
    return found;
  }

  std::shared_ptr<TamzoVastAd> ad_;
};

}  // namespace tamzo::testing
