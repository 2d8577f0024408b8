#include "tamzo/sdk/TamzoState.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tamzo/sdk/TamzoWebSettings.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using TamzoStateTest = SdkTest;

TEST_F(TamzoStateTest, TheStateHasDefaults) {
  EXPECT_TRUE(TamzoState::getBlockedAdCategories().isNil());
  EXPECT_EQ(TamzoState::getSessionId(), "");
  EXPECT_EQ(TamzoState::getTamzoWebSettings(), nullptr);
  HostState source;
  source.sessionId = [] { return Text(); };
  source.blockedAdCategories = [] { return Text(" a,b "); };
  useState(source);
  EXPECT_EQ(TamzoState::getSessionId(), "") << "never nil";
  EXPECT_EQ(TamzoState::getBlockedAdCategories(), " a,b ");
  useState({});
  EXPECT_TRUE(TamzoState::getBlockedAdCategories().isNil());
}

TEST_F(TamzoStateTest, TheStateIsSafeFromSeveralThreads) {
  std::vector<std::thread> threads;
  std::atomic<int> bad{0};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t, &bad] {
      for (int i = 0; i < 500; ++i) {
        HostState source;
        source.sessionId = [text = Text(std::string(32, static_cast<char>('a' + t)))] {
          return text;
        };
        useState(std::move(source));
        const Text id = TamzoState::getSessionId();
        bad += id.view().size() != 32 || id.view().front() != id.view().back() ? 1 : 0;
        TamzoState::setTamzoWebSettings(TamzoWebSettings::init());
        bad += TamzoState::getTamzoWebSettings() == nullptr ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(bad, 0);
}

}  // namespace
}  // namespace tamzo::testing
