#include "tamzo/base/Text.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>

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
