#include "xml/EntitySizes.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/Growth.h"
#include "tests/support/Trees.h"
#include "xml/XmlTree.h"

namespace tamzo::testing {
namespace {

constexpr int kMaxNesting = 5;
constexpr std::size_t kMost = 1000;

// A document with entities that are declared and not referred to, but by each other.
class Entities {
 public:
  explicit Entities(const std::string& declarations)
      : tree_(parseXml(Text("<!DOCTYPE a [" + declarations + "]><a/>"), nullptr)) {}

  bool isRead() const { return tree_ != nullptr; }
  const xmlDoc* doc() const { return tree_->doc(); }
  const xmlEntity* at(const std::string& name) const {
    return xmlGetDocEntity(doc(), reinterpret_cast<const xmlChar*>(name.c_str()));
  }

 private:
  std::shared_ptr<const XmlTree> tree_;
};

TEST(EntitySizesTest, CountsWhatIsReferredTo) {
  const std::vector<std::pair<std::string, std::size_t>> rows{
      // what e is declared as, beside f, which stands for 100 letters, and how long it is
      {"", 0},
      {"text", 4},
      {"&f;", 3 + 100},
      {"&f;&f;", 6 + 200},
      {"x&f;x", 5 + 100},
      {"&none;", 6},
      {"&#38;f;", 3 + 100},
      {"&#38;", 1},
      {"&#38;&#38;f;", 4 + 100},
      {"&#38;f", 2},
      {"&#38;f &#38;f;", 6 + 100},
      {"&f;&f;&f;&f;&f;&f;&f;&f;&f;&f;", 30 + 1000},
  };
  for (const auto& [content, size] : rows) {
    const Entities entities("<!ENTITY f '" + std::string(100, 'f') + "'><!ENTITY e '" + content +
                            "'>");
    ASSERT_TRUE(entities.isRead()) << content;
    EXPECT_EQ(EntitySizes(kMaxNesting).of(entities.doc(), entities.at("e"), 10 * kMost), size)
        << content;
  }
}

TEST(EntitySizesTest, SaysOnlyThatItIsMoreThanTheMost) {
  std::string tower = "<!ENTITY e0 '" + std::string(100, 'e') + "'>";
  for (int i = 1; i <= kMaxNesting; ++i) {
    const std::string inner = "&e" + std::to_string(i - 1) + ";";
    tower += "<!ENTITY e" + std::to_string(i) + " '" + repeat(inner, 5) + "'>";
  }
  const Entities entities(tower);
  ASSERT_TRUE(entities.isRead());
  EntitySizes sizes(kMaxNesting);
  EXPECT_EQ(sizes.of(entities.doc(), entities.at("e0"), kMost), 100U);
  EXPECT_EQ(sizes.of(entities.doc(), entities.at("e1"), kMost), 20U + 500U);
  EXPECT_GT(sizes.of(entities.doc(), entities.at("e5"), kMost), kMost);
}

TEST(EntitySizesTest, OnesThatReferToThemselvesOrTooDeeplyAreTooLong) {
  const Entities loop("<!ENTITY e '&f;'><!ENTITY f '&e;'>");
  ASSERT_TRUE(loop.isRead());
  EXPECT_GT(EntitySizes(kMaxNesting).of(loop.doc(), loop.at("e"), kMost), kMost);

  std::string chain = "<!ENTITY e0 'x'>";
  for (int i = 1; i <= kMaxNesting + 1; ++i) {
    chain += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
  }
  const Entities nested(chain);
  ASSERT_TRUE(nested.isRead());
  EXPECT_LE(EntitySizes(kMaxNesting).of(nested.doc(), nested.at("e5"), kMost), kMost);
  EXPECT_GT(EntitySizes(kMaxNesting).of(nested.doc(), nested.at("e6"), kMost), kMost);
}

TEST(EntitySizesTest, ReadsAnEntityOnce) {
  // Each "&" may begin a reference that ends far away.
  for (const char* piece : {"&#38;", "&#38;a", ";", "&#38;a;", "&f;"}) {
    EXPECT_TRUE(growsLinearly(2000, [piece](std::size_t size) {
      const Entities entities("<!ENTITY f ''><!ENTITY e '" + repeat(piece, static_cast<int>(size)) +
                              ";'>");
      return [entities] {
        EntitySizes(kMaxNesting).of(entities.doc(), entities.at("e"), std::size_t{1} << 30U);
      };
    })) << piece;
  }
}

}  // namespace
}  // namespace tamzo::testing
