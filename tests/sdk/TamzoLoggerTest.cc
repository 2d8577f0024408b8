#include "tamzo/sdk/TamzoLogger.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using TamzoLoggerTest = SdkTest;

TEST_F(TamzoLoggerTest, TheLogIsSilentUntilSwitchedOn) {
  std::vector<std::string> lines;
  writeLogTo([&](std::string_view line) { lines.emplace_back(line); });
  int computed = 0;
  const auto argument = [&computed] {
    ++computed;
    return Text("x");
  };
  TAMZO_LOG("line %@", argument());
  TamzoLogger::printLog("plain");
  EXPECT_TRUE(lines.empty());
  EXPECT_EQ(computed, 0) << "arguments of a line that nobody reads are not computed";
  isTamzoDebugEnabled = true;
  TAMZO_LOG("line %@ %ld", argument(), std::int64_t{-7});
  TAMZO_LOG("no arguments");
  TamzoLogger::printLog("plain %@");
  EXPECT_EQ(lines, (std::vector<std::string>{"[TAMZO-LOG][v8.0.0 p0] line x -7",
                                             "[TAMZO-LOG][v8.0.0 p0] no arguments", "plain %@"}));
}

TEST_F(TamzoLoggerTest, FormatsAreFilledInOrder) {
  EXPECT_EQ(TamzoLogger::format("", {}), "");
  EXPECT_EQ(TamzoLogger::format("%@%@", {Text("a"), Text()}), "a(null)");
  EXPECT_EQ(TamzoLogger::format("%@", {Text("%@ %ld")}), "%@ %ld") << "values are not formats";
  EXPECT_EQ(TamzoLogger::format("%@ %@", {Text("a")}), "a %@");
  EXPECT_EQ(TamzoLogger::format("100% %d %", {Text("a")}), "100% %d %");
  EXPECT_EQ(TamzoLogger::format("%ld", {std::numeric_limits<std::int64_t>::min()}),
            "-9223372036854775808");
}

TEST_F(TamzoLoggerTest, ALineIsWrittenWholeWhateverItHolds) {
  collectLog();
  const std::string odd("a\0b\nc%s\xFF", 8);
  TamzoLogger::printLog(Text(odd));
  TAMZO_LOG("%@", Text(odd));
  TAMZO_LOG("%@|%ld", Text(), std::int64_t{0});
  EXPECT_EQ(log(), (std::vector<std::string>{odd, "[TAMZO-LOG][v8.0.0 p0] " + odd,
                                             "[TAMZO-LOG][v8.0.0 p0] (null)|0"}));
}

TEST_F(TamzoLoggerTest, ACallStackHasALineForEachCaller) {
  const std::string stack = TamzoLogger::callStackSymbols();
  EXPECT_NE(stack.find('\n'), std::string::npos) << stack;
  EXPECT_NE(stack.front(), '\n');
  EXPECT_NE(stack.back(), '\n');
}

}  // namespace
}  // namespace tamzo::testing
