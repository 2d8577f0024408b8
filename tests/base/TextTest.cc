#include "tamzo/base/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tamzo::testing {
namespace {

TEST(Text, ThatIsNilIsNotEmptyText) {
  const Text nil;
  const Text empty("");
  EXPECT_TRUE(nil.isNil());
  EXPECT_FALSE(empty.isNil());
  EXPECT_FALSE(nil == empty);
  EXPECT_EQ(nil, Text());
  EXPECT_EQ(empty, Text(std::string()));
  EXPECT_EQ(nil.view(), "");
  EXPECT_EQ(empty.view(), "");
  EXPECT_FALSE(nil.hasCharacters());
  EXPECT_FALSE(empty.hasCharacters());
}

TEST(Text, IsNilForANullPointerAndForNothingElse) {
  const char* null = nullptr;
  EXPECT_TRUE(Text(nullptr).isNil());
  EXPECT_TRUE(Text(null).isNil());
  EXPECT_FALSE(Text(std::string_view("", 0)).isNil());
  EXPECT_FALSE(Text(std::string_view()).isNil()) << "a view without characters is \"\"";
  EXPECT_FALSE(Text::literal("").isNil());
  EXPECT_FALSE(Text::sharing(std::string_view(), nullptr).isNil());
}

TEST(Text, EqualsAnyOtherOfTheSameCharacters) {
  const Text made(std::string("abc"));
  EXPECT_EQ(made, Text("abc"));
  EXPECT_EQ(made, Text::literal("abc"));
  EXPECT_FALSE(made == Text("abd"));
  EXPECT_FALSE(made == Text("ab"));
  EXPECT_FALSE(made == Text());
  const std::string withNul("a\0b", 3);
  EXPECT_EQ(Text(withNul).view().size(), 3U);
  EXPECT_FALSE(Text(withNul) == Text("a"));
}

TEST(Text, KnowsWhetherANulFollowsIt) {
  EXPECT_TRUE(Text(std::string(100, 'x')).isTerminated());
  EXPECT_TRUE(Text("abc").isTerminated());
  EXPECT_TRUE(Text("").isTerminated());
  EXPECT_TRUE(Text::literal("abc").isTerminated());
  EXPECT_TRUE(MutableText::create().asText().isTerminated());
  const Text whole("abc");
  EXPECT_FALSE(whole.part(whole.view().substr(0, 2)).isTerminated()) << "a c follows";
  EXPECT_FALSE(Text().isTerminated());
  EXPECT_FALSE(MutableText().asText().isTerminated());
}

TEST(Text, IsHandedOnWithoutCopyingItsCharacters) {
  const Text first(std::string(1000, 'x'));
  const Text second = first;
  Text third;
  third = second;
  EXPECT_EQ(second.view().data(), first.view().data());
  EXPECT_EQ(third.view().data(), first.view().data());
  EXPECT_TRUE(third.isSameObject(first));
  EXPECT_FALSE(Text(first.view()).isSameObject(first)) << "equal, but another object";
  EXPECT_TRUE(Text().isSameObject(Text()));
  EXPECT_FALSE(Text().isSameObject(Text("")));
}

TEST(Text, TakesAStringOverWithoutCopyingItsCharacters) {
  std::string characters(1000, 'x');
  const char* before = characters.data();
  EXPECT_EQ(Text(std::move(characters)).view().data(), before);
}

TEST(Text, IsCopiedFromWhatMayChange) {
  std::string characters = "abc";
  const Text text(characters);
  characters = "xyz";
  EXPECT_EQ(text.view(), "abc");
}

TEST(Text, OutlivesTheTextThatItIsAPartOf) {
  Text part;
  {
    const Text whole(std::string("  a value that is too long to stand in the object  "));
    part = whole.part(whole.view().substr(2, 7));
    EXPECT_EQ(part.view().data(), whole.view().data() + 2);
  }
  EXPECT_EQ(part, Text("a value"));
  const Text whole("abc");
  const Text none = whole.part(whole.view().substr(3));
  EXPECT_FALSE(none.isNil());
  EXPECT_EQ(none, Text(""));
}

TEST(Text, KeepsTheOwnerOfWhatItShares) {
  auto owner = std::make_shared<std::string>("characters");
  const std::weak_ptr<std::string> watch = owner;
  Text text = Text::sharing(*owner, owner);
  owner.reset();
  EXPECT_FALSE(watch.expired());
  EXPECT_EQ(text.view(), "characters");
  text = Text();
  EXPECT_TRUE(watch.expired());
}

TEST(Text, IsPrintedSoThatNilShows) {
  std::ostringstream out;
  out << Text() << ' ' << Text("") << ' ' << Text("a");
  EXPECT_EQ(out.str(), "nil \"\" \"a\"");
}

TEST(Text, IsNilOnceItWasMovedAway) {
  static_assert(std::is_nothrow_move_constructible_v<Text>);
  static_assert(std::is_nothrow_move_assignable_v<Text>);
  MutableText growing = MutableText::create();
  growing.appendString("growing");
  const Text whole(std::string(100, 'x'));
  for (const Text& each : {Text::literal("literal"), whole, whole.part(whole.view().substr(50)),
                           growing.asText(), Text("")}) {
    Text source = each;
    const Text made(std::move(source));
    EXPECT_EQ(made, each);
    EXPECT_TRUE(source.isNil()) << each;  // NOLINT(bugprone-use-after-move)
    EXPECT_FALSE(source.isTerminated());
    EXPECT_EQ(source.view(), "");
    source = each;
    Text assigned = Text::literal("before");
    assigned = std::move(source);
    EXPECT_EQ(assigned, each);
    EXPECT_EQ(assigned.isTerminated(), each.isTerminated());
    EXPECT_TRUE(source.isNil()) << each;  // NOLINT(bugprone-use-after-move)
    Text& same = assigned;
    assigned = std::move(same);
    EXPECT_EQ(assigned, each) << "moved into itself";
  }
}

TEST(Text, IsComparedWithStringsAndViewsAsTheyAre) {
  const Text text("abc");
  const Text nil;
  EXPECT_TRUE(text == std::string_view("abc"));
  EXPECT_TRUE(std::string_view("abc") == text);
  EXPECT_TRUE(text == std::string("abc"));
  EXPECT_TRUE(std::string("abc") == text);
  EXPECT_TRUE(text == "abc");
  EXPECT_TRUE("abc" == text);
  EXPECT_TRUE(text != std::string_view("abd"));
  EXPECT_TRUE(text != "abd");
  EXPECT_FALSE(nil == std::string_view()) << "a view is never nil";
  EXPECT_FALSE(nil == std::string());
  EXPECT_FALSE(nil == "");
  EXPECT_TRUE(Text("") == std::string_view());
  EXPECT_TRUE(nil == nullptr);
  EXPECT_FALSE(text == nullptr);
  EXPECT_TRUE(nil == static_cast<const char*>(nullptr));
  EXPECT_TRUE(text < std::string_view("abd"));
  EXPECT_TRUE(std::string("abb") < text);
  EXPECT_TRUE(text > "abb");
  EXPECT_TRUE(nil < "");
  EXPECT_TRUE(nil < std::string_view());
  EXPECT_FALSE(nil < nullptr);
}

TEST(Text, IsOrderedByItsBytesAndNilComesFirst) {
  const std::vector<Text> ordered{Text(), "", "A", "a", "aa", "b", "\xC3\xA4", "\xFF"};
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    for (std::size_t j = 0; j < ordered.size(); ++j) {
      EXPECT_EQ(ordered[i] < ordered[j], i < j) << ordered[i] << ordered[j];
      EXPECT_EQ(ordered[i] == ordered[j], i == j) << ordered[i] << ordered[j];
      EXPECT_EQ(ordered[i] <=> ordered[j], i <=> j) << ordered[i] << ordered[j];
    }
  }
  std::vector<Text> shuffled{ordered.rbegin(), ordered.rend()};
  std::sort(shuffled.begin(), shuffled.end());
  EXPECT_EQ(shuffled, ordered);
}

TEST(Text, IsAKeyOfTheStandardLibrarysMaps) {
  std::map<Text, int> sorted{{"b", 1}, {Text(), 2}, {"", 3}};
  EXPECT_EQ(sorted.begin()->second, 2);
  EXPECT_EQ(sorted.at(""), 3);
  const std::map<Text, int, std::less<>> searched{{"b", 1}};
  EXPECT_EQ(searched.count(std::string_view("b")), 1U);
  const std::unordered_map<Text, int> hashed{{"b", 1}, {Text(), 2}, {"", 3}};
  EXPECT_EQ(hashed.at(std::string("b")), 1);
  EXPECT_EQ(hashed.at(Text()), 2);
  EXPECT_EQ(hashed.at(""), 3);
  EXPECT_EQ(std::hash<Text>()(Text::literal("b")), std::hash<Text>()(Text(std::string("b"))));
  EXPECT_NE(std::hash<Text>()(Text()), std::hash<Text>()(Text("")));
}

TEST(Text, CopiesAPartThatIsNotItsOwn) {
  const Text whole("0123456789");
  std::string other = "elsewhere, and gone soon";
  const Text part = whole.part(other);
  other.assign(other.size(), '-');
  EXPECT_EQ(part, "elsewhere, and gone soon");
  EXPECT_EQ(Text().part(Text("abc").view()), "abc");
  EXPECT_EQ(whole.part(std::string_view()), "");
  EXPECT_EQ(Text().part(std::string_view()), "");
}

TEST(MutableText, IsNilUntilCreated) {
  MutableText nil;
  EXPECT_TRUE(nil.isNil());
  EXPECT_TRUE(nil.asText().isNil());
  nil.appendString("x");
  EXPECT_TRUE(nil.isNil());
  EXPECT_EQ(nil.view(), "");
  const MutableText empty = MutableText::create();
  EXPECT_FALSE(empty.isNil());
  EXPECT_FALSE(empty.asText().isNil());
  EXPECT_EQ(empty.asText(), Text(""));
  EXPECT_FALSE(nil == empty);
  EXPECT_EQ(empty, MutableText::create());
}

TEST(MutableText, GrowsForAllWhoHoldIt) {
  MutableText growing = MutableText::create();
  MutableText other = growing;
  const Text seen = growing.asText();
  const Text copied = seen;
  growing.appendString("one");
  other.appendString(" two");
  EXPECT_EQ(growing.view(), "one two");
  EXPECT_EQ(seen, Text("one two"));
  EXPECT_EQ(copied, Text("one two"));
  EXPECT_TRUE(seen.hasCharacters());
  EXPECT_TRUE(seen.isSameObject(growing.asText()));
  EXPECT_FALSE(seen.isSameObject(Text("one two")));
}

TEST(MutableText, APartOfItDoesNotGrow) {
  MutableText growing = MutableText::create();
  growing.appendString(" one ");
  const Text seen = growing.asText();
  const Text part = seen.part(seen.view().substr(1, 3));
  growing.appendString(std::string(10'000, 'x'));
  EXPECT_EQ(part, Text("one"));
}

TEST(MutableText, MayBeAppendedToItself) {
  MutableText growing = MutableText::create();
  growing.appendString("0123456789");
  for (int i = 0; i < 10; ++i) {
    growing.appendString(growing.view());
  }
  EXPECT_EQ(growing.view().size(), 10'240U);
  EXPECT_TRUE(growing.view().ends_with("890123456789"));
}

TEST(MutableText, IsNilOnceItWasMovedAway) {
  MutableText growing = MutableText::create();
  growing.appendString("x");
  const MutableText taken = std::move(growing);
  EXPECT_TRUE(growing.isNil());  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(taken.view(), "x");
}

TEST(MutableText, LivesAsLongAsOneWhoSeesIt) {
  Text seen;
  {
    MutableText growing = MutableText::create();
    growing.appendString("still here");
    seen = growing.asText();
  }
  EXPECT_EQ(seen, Text("still here"));
}

}  // namespace
}  // namespace tamzo::testing
