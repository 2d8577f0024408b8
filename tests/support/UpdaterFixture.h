#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tamzo/vast/RecordJson.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {

using Names = std::vector<std::string>;
using UrlsAndOffsets = std::vector<std::pair<std::string, std::string>>;

/// A record that no document has written to.
inline std::shared_ptr<TamzoVastAd> freshRecord() { return TamzoVastAd::initWithVast(""); }

/// The property `trackers` as the record's JSON has it.
inline std::string trackersAsJson(const TamzoVastAd& ad) {
  return nlohmann::ordered_json::parse(recordAsJson(ad)).at("trackers").dump();
}

/// Has every URL answered with `body`.
inline void answerEveryUrlWith(const std::string& body) {
  readUrlsWith([body](const Text&) { return body; });
}

/// One row of a table: what is read, and the record's trackers after that.
struct TrackerRow {
  const char* name;
  const char* xml;
  const char* expected;
};

/// A record whose updaters are called one by one.
class UpdaterTest : public SdkTest {
 protected:
  UpdaterTest() : ad_(freshRecord()) {}

  /// What is listed under a name, as URL and offset.
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

  Names trackerNames() const {
    Names names;
    for (const auto& entry : *ad_->trackers()) {
      names.emplace_back(entry.name.view());
    }
    return names;
  }

  std::shared_ptr<TamzoVastAd> ad_;
};

}  // namespace tamzo::testing
