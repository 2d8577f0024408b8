// Elements for C, one that a record holds and one of the caller's.

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "capi/Boundary.h"
#include "capi/Objects.h"
#include "tamzo/xml/DDXMLDocument.h"

namespace tamzo::capi {
namespace {

tamzo_vast_element rootOf(const std::string& xml) {
  return tamzo_vast_element(DDXMLDocument::initWithXMLString(xml, 0, nullptr)->rootElement());
}

TEST(CElements, PathOfNamesFindsTheFirst) {
  const tamzo_vast_element root = rootOf("<a><b><c>1</c></b><b><c>2</c></b></a>");
  tamzo_vast_element* found = nullptr;
  ASSERT_EQ(tamzo_vast_element_at_path(&root, tamzo_vast_text_of("b.c"), &found), TAMZO_VAST_OK);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->node.stringValue().view(), "1");
  tamzo_vast_element_release(found);
  ASSERT_EQ(tamzo_vast_element_at_path(&root, tamzo_vast_text_of("b.x"), &found), TAMZO_VAST_OK);
  EXPECT_EQ(found, nullptr);
}

TEST(CElements, ChildrenAreWalkedOneByOne) {
  const tamzo_vast_element root = rootOf("<a>x<b/><!-- --><c/></a>");
  tamzo_vast_element* first = nullptr;
  tamzo_vast_element* second = nullptr;
  tamzo_vast_element* third = nullptr;
  ASSERT_EQ(tamzo_vast_element_first_child(&root, &first), TAMZO_VAST_OK);
  ASSERT_EQ(tamzo_vast_element_next_sibling(first, &second), TAMZO_VAST_OK);
  ASSERT_EQ(tamzo_vast_element_next_sibling(second, &third), TAMZO_VAST_OK);
  EXPECT_EQ(second->node.name().view(), "c");
  EXPECT_EQ(third, nullptr);
  tamzo_vast_element_release(first);
  tamzo_vast_element_release(second);
}

TEST(CElements, ElementWithoutAttributesHasAnEmptyList) {
  const tamzo_vast_element root = rootOf("<a/>");
  tamzo_vast_attributes* attributes = nullptr;
  ASSERT_EQ(tamzo_vast_element_attributes(&root, &attributes), TAMZO_VAST_OK);
  EXPECT_EQ(attributes->count, 0U);
  EXPECT_NE(attributes->items, nullptr);
  tamzo_vast_attributes_release(attributes);
}

TEST(CElements, TextMayHoldAnything) {
  const tamzo_vast_element root = rootOf("<a>\xC3\xA9&#9;</a>");
  tamzo_vast_string* text = nullptr;
  ASSERT_EQ(tamzo_vast_element_text(&root, &text), TAMZO_VAST_OK);
  EXPECT_EQ(viewOf(tamzo_vast_string_text(text)), "\xC3\xA9\t");
  EXPECT_EQ(tamzo_vast_string_text(text).data[3], '\0');
  tamzo_vast_string_release(text);
}

TEST(CElements, AttributesAreReadByManyThreadsAtOnce) {
  const tamzo_vast_element root = rootOf("<a b='1' c='2'/>");
  std::vector<std::thread> threads;
  std::atomic<int> read = 0;
  for (int at = 0; at < 8; ++at) {
    threads.emplace_back([&] {
      tamzo_vast_attributes* all = nullptr;
      if (tamzo_vast_element_attributes(&root, &all) == TAMZO_VAST_OK && all->count == 2) {
        ++read;
      }
      tamzo_vast_attributes_release(all);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(read, 8);
}

}  // namespace
}  // namespace tamzo::capi
