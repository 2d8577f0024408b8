#pragma once

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

#include "tamzo/net/TamzoUrlReader.h"
#include "tamzo/sdk/TamzoAssetsManager.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/sdk/TamzoMacroReplacementUtil.h"
#include "tamzo/sdk/TamzoState.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "tests/support/HostHooks.h"

namespace tamzo::testing {

/// Brings all class-level state of the SDK back to its defaults before and after each test.
class SdkTest : public ::testing::Test {
 protected:
  SdkTest() { reset(); }
  ~SdkTest() override { reset(); }

  /// Turns debug logging on and collects the lines, prefix "[TAMZO-LOG][v8.0.0 p0] " included.
  void collectLog() {
    isTamzoDebugEnabled = true;
    writeLogTo([this](std::string_view line) {
      const std::lock_guard lock(mutex_);
      lines_.emplace_back(line);
    });
  }
  std::vector<std::string> log() const {
    const std::lock_guard lock(mutex_);
    return lines_;
  }
  /// True when the log holds that line, given without its prefix.
  bool logged(const std::string& message) const {
    const std::lock_guard lock(mutex_);
    for (const std::string& line : lines_) {
      if (line == "[TAMZO-LOG][v8.0.0 p0] " + message) {
        return true;
      }
    }
    return false;
  }

  static void blockCategories(const Text& categories) {
    HostState source;
    source.blockedAdCategories = [categories] { return categories; };
    useState(std::move(source));
  }

 private:
  static void reset() {
    isTamzoDebugEnabled = false;
    TamzoState::setTamzoWebSettings(nullptr);
    TamzoHost::set({});
  }

  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

/// The document of `xml`; fails the test when it is none.
inline std::shared_ptr<DDXMLDocument> parseDocument(const std::string& xml) {
  XmlError error;
  auto document = DDXMLDocument::initWithXMLString(xml, 0, &error);
  EXPECT_NE(document, nullptr) << error.message << " in " << xml;
  return document;
}

/// The root of `xml` as the list that updaters take.
inline NodeList rootOf(const std::string& xml) {
  return NodeList::of(parseDocument(xml)->rootElement());
}

}  // namespace tamzo::testing
