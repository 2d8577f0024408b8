#include "tamzo/sdk/TamzoCard.h"

#include <gtest/gtest.h>

#include "tests/support/Documents.h"

namespace tamzo::testing {
namespace {

TEST(TamzoCardTest, ACardIsNeverRefused) {
  EXPECT_EQ(TamzoCard::initWithNode(root("<Card/>"))->node().XMLString(), "<Card/>");
  EXPECT_FALSE(TamzoCard::initWithNode(DDXMLElement())->node());
}

}  // namespace
}  // namespace tamzo::testing
