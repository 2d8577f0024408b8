#include "explain/CleanUp.h"

#include <gtest/gtest.h>

namespace tamzo::explain {
namespace {

TEST(CleanUpTest, placesOfTheCleanedTextAreFoundInTheReceivedOne) {
  const CleanUp cleanUp(Text("<a xmlns='u' b='1'><c xmlns='v' d='2'/><e/></a>"));
  EXPECT_EQ(cleanUp.cleaned().view(), "<a xmlnsb='1'><c xmlnsd='2'/><e/></a>");
  const std::string_view cleaned = cleanUp.cleaned();
  const std::string_view received = cleanUp.received();
  for (const std::string_view piece : {"<a", "b='1'", "<c", "d='2'", "<e", "</a"}) {
    EXPECT_EQ(cleanUp.toReceived(cleaned.find(piece)), received.find(piece)) << piece;
  }
  EXPECT_EQ(cleanUp.toReceived(3), 3U);
  EXPECT_EQ(cleanUp.toReceived(std::string_view::npos), std::string_view::npos);
}

TEST(CleanUpTest, aTextWithoutTheWordIsLeftAsItIs) {
  const CleanUp cleanUp(Text("<a xmlns:b='u' c='1'/>"));
  EXPECT_FALSE(cleanUp.changes());
  EXPECT_EQ(cleanUp.toReceived(7), 7U);
  EXPECT_EQ(cleanUp.withoutDefaultNamespaces(), "<a xmlns:b='u' c='1'/>");
}

TEST(CleanUpTest, onlyAttributesOfThatNameAreTakenAway) {
  const CleanUp cleanUp(Text("<a xmlns='u'>\n<b c='?xmlns=1' xmlns='v' d=''/> xmlns=x </a>"));
  EXPECT_EQ(cleanUp.withoutDefaultNamespaces(), "<a >\n<b c='?xmlns=1'  d=''/> xmlns=x </a>");
}

TEST(CleanUpTest, anythingMayBeAskedOfAnyText) {
  for (const char* text :
       {"", "xmlns= ", "<xmlns= ", "<a xmlns= <", "<a b='xmlns= ", "<!-- xmlns= "}) {
    const CleanUp cleanUp{Text(text)};
    cleanUp.findFault();
    cleanUp.findTaken();
    cleanUp.findVersionTaken();
    EXPECT_LE(cleanUp.withoutDefaultNamespaces().size(), std::string_view(text).size());
  }
}

}  // namespace
}  // namespace tamzo::explain
