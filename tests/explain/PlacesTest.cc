#include "explain/Places.h"

#include <gtest/gtest.h>

#include "tests/support/Growth.h"

namespace tamzo::explain {
namespace {

std::string placeOf(std::string_view text, std::size_t offset) {
  const Place place = placesOf(text, {offset}).at(0);
  return std::to_string(place.line) + ":" + std::to_string(place.column) + " " + place.excerpt;
}

TEST(PlacesTest, linesEndAtLfAndColumnsCountCharacters) {
  EXPECT_EQ(placeOf("ab", 0), "1:1 ab");
  EXPECT_EQ(placeOf("ab\r\n\xC3\xA9\xF0\x9F\x98\x80x\r\nz", 10), "2:3 \xC3\xA9\xF0\x9F\x98\x80x");
  EXPECT_EQ(placeOf("a\rb", 2), "1:3 a\rb");
  EXPECT_EQ(placeOf("ab\n", 3), "2:1 ");
  EXPECT_EQ(placeOf("ab", 99), "1:3 ab");
}

TEST(PlacesTest, aByteOrderMarkCountsAsNothing) {
  EXPECT_EQ(placeOf("\xEF\xBB\xBF<a>", 3), "1:1 <a>");
}

TEST(PlacesTest, anExcerptIsCutAroundTheSpot) {
  const std::string text = std::string(300, 'a') + "X" + std::string(300, 'b');
  const Place place = placesOf(text, {300}).at(0);
  EXPECT_EQ(place.excerpt, std::string(80, 'a') + "X" + std::string(79, 'b'));
  EXPECT_EQ(place.spot, 80U);
  EXPECT_EQ(placesOf(text, {0}).at(0).excerpt, text.substr(0, 160));
  EXPECT_EQ(placesOf(text, {601}).at(0).excerpt, text.substr(441));
}

TEST(PlacesTest, severalComeInTheOrderAsked) {
  EXPECT_EQ(linesOf("a\nb\nc", {4, 0, 2}), (std::vector<std::size_t>{3, 1, 2}));
}

TEST(PlacesTest, aLongLineTakesTimeInItsLength) {
  EXPECT_TRUE(tamzo::testing::growsLinearly(5000, [](std::size_t count) {
    std::vector<std::size_t> offsets;
    for (std::size_t i = 0; i < count; ++i) {
      offsets.push_back(i * 10);
    }
    return [text = std::string(count * 10, 'a'), offsets] { linesOf(text, offsets); };
  }));
}

TEST(PlacesTest, textsAreShortenedByCharacters) {
  EXPECT_EQ(shortened("\xC3\xA9"
                      "ab",
                      3),
            "\xC3\xA9"
            "ab");
  EXPECT_EQ(shortened("\xC3\xA9"
                      "abc",
                      3),
            "\xC3\xA9"
            "ab\xE2\x80\xA6");
}

TEST(PlacesTest, aCharacterIsFoundByItsNumber) {
  EXPECT_EQ(byteOf("a\xC3\xA9z", 0), 0U);
  EXPECT_EQ(byteOf("a\xC3\xA9z", 2), 3U);
  EXPECT_EQ(byteOf("a\xC3\xA9z", 9), 4U);
}

TEST(PlacesTest, lengthsCountUtf16Units) {
  EXPECT_EQ(utf16Length("a\xC3\xA9\xF0\x9F\x98\x80"), 4U);
}

}  // namespace
}  // namespace tamzo::explain
