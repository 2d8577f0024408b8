#include "tamzo/base/KeyIndex.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/Growth.h"

namespace tamzo::testing {
namespace {

using namespace std::string_view_literals;

// Well beyond the number of keys that are compared one by one.
constexpr std::size_t kMany = 200;

using MakeKey = std::function<std::string(std::size_t)>;

// Keys that are hard to tell apart, each kind in its own way.
const std::vector<std::pair<const char*, MakeKey>> kKinds{
    {"the last character differs",
     [](std::size_t i) {
       return "https://tracker.example/event" + std::string(1, static_cast<char>(i));
     }},
    {"the first character differs",
     [](std::size_t i) { return std::string(1, static_cast<char>(i)) + "/event"; }},
    {"each a prefix of the next, \"\" the first",
     [](std::size_t i) { return std::string(i, 'k'); }},
    {"each a prefix of the one before", [](std::size_t i) { return std::string(kMany - i, 'k'); }},
    {"NUL and nothing else", [](std::size_t i) { return std::string(i, '\0'); }},
    {"a NUL before what differs",
     [](std::size_t i) { return std::string("event\0"sv) + std::to_string(i); }},
};

std::vector<std::string> keysOf(const MakeKey& make) {
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < kMany; ++i) {
    keys.push_back(make(i));
  }
  return keys;
}

// Every key has its position, and those that were not entered have none.
void expectPositions(const KeyIndex& index, const std::vector<std::string>& keys,
                     const std::vector<std::size_t>& positions) {
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const auto expected = i < positions.size() ? std::optional(positions[i]) : std::nullopt;
    ASSERT_EQ(index.find(keys[i]), expected) << "key " << i << " of " << positions.size();
  }
}

TEST(KeyIndexTest, FindsEveryKeyAfterEachInsertion) {
  for (const auto& [name, make] : kKinds) {
    SCOPED_TRACE(name);
    const std::vector<std::string> keys = keysOf(make);
    KeyIndex index;
    std::vector<std::size_t> positions;
    expectPositions(index, keys, positions);
    for (std::size_t i = 0; i < keys.size(); ++i) {
      index.set(keys[i], 1000 + i);
      positions.push_back(1000 + i);
      expectPositions(index, keys, positions);
    }
  }
}

TEST(KeyIndexTest, ChangesThePositionOfAnyKeyAtAnyTime) {
  for (const auto& [name, make] : kKinds) {
    SCOPED_TRACE(name);
    const std::vector<std::string> keys = keysOf(make);
    KeyIndex index;
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < keys.size(); ++i) {
      index.set(keys[i], i);
      positions.push_back(i);
      // The first key, the newest, and one that wanders over all of them.
      for (const std::size_t changed : {std::size_t{0}, i, i * 7 % (i + 1)}) {
        positions[changed] += 10'000;
        index.set(keys[changed], positions[changed]);
      }
      expectPositions(index, keys, positions);
    }
  }
}

TEST(KeyIndexTest, EnteringAKeyAgainMakesNoSecondOne) {
  // Were it entered twice, the index would change over early, and an old position show again.
  const std::string key = "key";
  KeyIndex index;
  for (std::size_t i = 0; i < kMany; ++i) {
    index.set(key, i);
    ASSERT_EQ(index.find("key"), i);
  }
  const std::vector<std::string> keys = keysOf(kKinds[0].second);
  for (std::size_t i = 0; i < kMany; ++i) {
    index.set(keys[i], i);
    ASSERT_EQ(index.find("key"), kMany - 1);
  }
}

TEST(KeyIndexTest, KeysAreFoundByTheirCharactersWhereverTheyStand) {
  const std::vector<std::string> keys = keysOf(kKinds[0].second);
  KeyIndex index;
  for (std::size_t i = 0; i < kMany; ++i) {
    index.set(keys[i], i);
  }
  for (std::size_t i = 0; i < kMany; ++i) {
    const std::string elsewhere = "(" + keys[i] + ")";
    ASSERT_EQ(index.find(std::string_view(elsewhere).substr(1, keys[i].size())), i);
    ASSERT_EQ(index.find(elsewhere), std::nullopt);
  }
}

TEST(KeyIndexTest, ACopyGoesItsOwnWay) {
  for (const std::size_t count : {std::size_t{3}, kMany}) {
    const std::vector<std::string> keys = keysOf(kKinds[0].second);
    KeyIndex index;
    for (std::size_t i = 0; i < count; ++i) {
      index.set(keys[i], i);
    }
    KeyIndex copy = index;
    copy.set(keys[0], 77);
    copy.set(keys[count - 1], 78);
    EXPECT_EQ(index.find(keys[0]), 0U);
    EXPECT_EQ(index.find(keys[count - 1]), count - 1);
    EXPECT_EQ(copy.find(keys[0]), 77U);
    EXPECT_EQ(copy.find(keys[count - 1]), 78U);
  }
}

TEST(KeyIndexTest, IsNotSlowForAnyKeys) {
  for (const std::size_t alike : {std::size_t{0}, std::size_t{300}}) {
    EXPECT_TRUE(growsLinearly(2000,
                              [alike](std::size_t size) {
                                auto keys = std::make_shared<std::vector<std::string>>();
                                for (std::size_t i = 0; i < size; ++i) {
                                  keys->push_back(std::string(alike, 'k') + std::to_string(i));
                                }
                                return [keys] {
                                  KeyIndex index;
                                  for (std::size_t i = 0; i < keys->size(); ++i) {
                                    index.set((*keys)[i], i);
                                  }
                                  EXPECT_EQ(index.find(keys->back()), keys->size() - 1);
                                };
                              }))
        << alike << " characters in common";
  }
}

TEST(KeyIndexTest, FindsTheLastPositionEntered) {
  // Beyond a few keys the index changes over to a map; every count around that must work.
  for (std::size_t count = 0; count <= 100; ++count) {
    std::vector<std::string> keys;
    for (std::size_t i = 0; i < count; ++i) {
      keys.push_back(std::string(i, 'k'));
    }
    KeyIndex index;
    for (std::size_t i = 0; i < count; ++i) {
      index.set(keys[i], i);
    }
    for (std::size_t i = 0; i < count; i += 3) {
      index.set(keys[i], i + 1000);
    }
    for (std::size_t i = 0; i < count; ++i) {
      EXPECT_EQ(index.find(std::string(i, 'k')), i % 3 == 0 ? i + 1000 : i) << count;
    }
    EXPECT_EQ(index.find("other"), std::nullopt) << count;
    KeyIndex moved = std::move(index);
    EXPECT_EQ(moved.find("other"), std::nullopt) << count;
    EXPECT_EQ(moved.find("").has_value(), count > 0);
  }
}

TEST(KeyIndexTest, TellsNearlyEqualKeysApart) {
  using namespace std::string_view_literals;
  const std::string_view keys[] = {
      "",          "\0"sv,     "\0\0"sv,   "1234567", "1234567\0"sv, "12345678",
      "1234567\1", "abcdefgh", "hgfedcba", "\xFF",    "\xFF\xFF",    "12345671234567",
      "a",         "A",        "a ",       " a",      "ab",          "ba",
      "aa",        "aaa"};
  KeyIndex index;
  for (std::size_t i = 0; i < std::size(keys); ++i) {
    index.set(keys[i], i);
  }
  for (std::size_t i = 0; i < std::size(keys); ++i) {
    EXPECT_EQ(index.find(keys[i]), i);
  }
}

}  // namespace
}  // namespace tamzo::testing
