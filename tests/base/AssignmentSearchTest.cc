#include "base/AssignmentSearch.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "tests/support/Growth.h"

namespace tamzo::testing {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

TEST(AssignmentSearchTest, FindsTheWordRightBeforeAnEqualsSign) {
  const struct {
    std::string_view text;
    std::size_t begin;
    std::size_t end;
  } rows[] = {
      {"", kNone, kNone},
      {"xmlns", kNone, kNone},
      {"=", kNone, kNone},
      {"mlns=", kNone, kNone},
      {"xmlns=", 0, 6},
      {"<a xmlns='u'>", 3, 9},
      {"xmlns =", kNone, kNone},
      {"xmlns:x=", kNone, kNone},
      {"x=xmlns=", 2, 8},
      {"==xmlns==", 2, 8},
      {"xmlnsxmlns=", 5, 11},
      {"xxmlns=", 1, 7},
      {"xmlns=xmlns=", 0, 6},
      {"XMLNS=", 0, 6},
      {"xMlNs=", 0, 6},
      {"xmln\xC5\xBF=", 0, 7},      // the long s is an s
      {"xmln\xBF=", kNone, kNone},  // half of it is nothing
      {"xmln\xC5=", kNone, kNone},
      {"xm\xE2\x84\xAAns=", kNone, kNone},
      {std::string_view("xm\0lns=", 7), kNone, kNone},
      {std::string_view("\0xmlns=", 7), 1, 7},
  };
  for (const auto& row : rows) {
    const TextMatch match = findAssignment(row.text, "xmlns", 0);
    EXPECT_EQ(match.begin, row.begin) << row.text;
    EXPECT_EQ(match.end, row.end) << row.text;
    EXPECT_EQ(static_cast<bool>(match), row.begin != kNone) << row.text;
  }
}

TEST(AssignmentSearchTest, TakesNothingFromBeforeTheBeginning) {
  const std::string_view text = "xmlns=xmlns=";
  for (std::size_t from = 1; from <= 6; ++from) {
    EXPECT_EQ(findAssignment(text, "xmlns", from).begin, 6U) << from;
  }
  for (std::size_t from = 7; from <= text.size(); ++from) {
    EXPECT_FALSE(findAssignment(text, "xmlns", from)) << from;
  }
}

TEST(AssignmentSearchTest, LettersOfAnyCaseAreThoseOfUnicode) {
  EXPECT_EQ(findAssignment("\xE2\x84\xAA=", "k", 0).end, 4U) << "the Kelvin sign is a k";
  EXPECT_EQ(findAssignment("\xE2\x84\xAA=", "K", 0).end, 4U);
  EXPECT_EQ(findAssignment("\xC5\xBF=", "S", 0).end, 3U);
  EXPECT_EQ(findAssignment("x\xE2\x84\xAA=", "k", 0).begin, 1U) << "and begins where its bytes do";
  EXPECT_FALSE(findAssignment("\x84\xAA=", "k", 0));
  EXPECT_EQ(findAssignment("AZ=", "az", 0).end, 3U) << "the first letter and the last";
  EXPECT_EQ(findAssignment("az=", "AZ", 0).end, 3U);
  EXPECT_FALSE(findAssignment("@=", "`", 0)) << "only letters have two cases";
  EXPECT_FALSE(findAssignment("[=", "{", 0));
}

TEST(AssignmentSearchTest, AnEmptyWordStandsBeforeEveryEqualsSign) {
  for (std::size_t from = 0; from <= 3; ++from) {
    const TextMatch match = findAssignment("=ab=c", "", from);
    EXPECT_EQ(match.begin, from == 0 ? 0U : 3U) << from;
    EXPECT_EQ(match.end, match.begin + 1) << from;
  }
  EXPECT_FALSE(findAssignment("=ab=c", "", 4));
}

TEST(AssignmentSearchTest, LooksAtATextOnce) {
  for (const std::string piece : {"mlns=", "xmln=", "=", "xmlns", "\xC5\xBF="}) {
    EXPECT_TRUE(growsLinearly(40'000, [&piece](std::size_t size) {
      std::string text;
      while (text.size() < size) {
        text += piece;
      }
      return [text] { EXPECT_FALSE(findAssignment(text, "xmlns", 0)); };
    })) << piece;
  }
}

}  // namespace
}  // namespace tamzo::testing
