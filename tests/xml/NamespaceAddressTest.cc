#include "xml/NamespaceAddress.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tamzo/base/Text.h"
#include "tests/support/Trees.h"
#include "xml/XmlTree.h"

namespace tamzo::testing {
namespace {

// The address of the prefix "p", written as `written` in a document with some entities.
std::string addressWritten(const std::string& written) {
  const auto tree = parseXml(
      Text("<!DOCTYPE a [<!ENTITY e 'urn:e'><!ENTITY f '&e;/f&amp;&lt;'><!ENTITY g '&#38;#65;'>"
           "<!ENTITY h 'a\nb'>]><a xmlns:p='" +
           written + "'/>"),
      nullptr);
  return addressOf(*xmlDocGetRootElement(tree->doc())->nsDef, tree->doc());
}

TEST(NamespaceAddress, IsReadToItsEnd) {
  struct Row {
    const char* written;
    const char* address;
  };
  for (const Row& row : std::vector<Row>{{"urn:a", "urn:a"},
                                         {"u&lt;v", "u<v"},
                                         {"u&amp;v&#38;w", "u&v&w"},
                                         {"u&#65;v\"", "uAv\""},
                                         {"u&amp;lt;v", "u&lt;v"},
                                         {"&e;", "urn:e"},
                                         {"1&f;2", "1urn:e/f&<2"},
                                         {"&g;", "A"},
                                         {"a&h;b&#10;c", "aa bb\nc"},
                                         {"a&amp;b;c", "a&b;c"},
                                         {"\xC3\xA4&#228;", "\xC3\xA4\xC3\xA4"}}) {
    EXPECT_EQ(addressWritten(row.written), row.address) << row.written;
  }
}

TEST(NamespaceAddress, IsKeptWhereEveryReaderTakesIt) {
  for (const std::string address : {"urn:a", "http://example.com/a?b=c&d#e", "a",
                                    "http://www.w3.org/2001/XMLSchema-instance"}) {
    EXPECT_EQ(acceptableAddress(address), address);
  }
}

TEST(NamespaceAddress, IsReplacedWhereSomeReadersDoNotTakeIt) {
  EXPECT_EQ(acceptableAddress("u<v"), "urn:invalid:u%3Cv");
  EXPECT_EQ(acceptableAddress("a b"), "urn:invalid:a%20b");
  EXPECT_EQ(acceptableAddress("\xC3\xA4"), "urn:invalid:%C3%A4");
  EXPECT_EQ(acceptableAddress(""), "urn:invalid:");
  EXPECT_EQ(acceptableAddress("http://www.w3.org/2000/xmlns/"),
            "urn:invalid:http%3A%2F%2Fwww%2Ew3%2Eorg%2F2000%2Fxmlns%2F");
  EXPECT_EQ(acceptableAddress("http://www.w3.org/XML/1998/namespace"),
            "urn:invalid:http%3A%2F%2Fwww%2Ew3%2Eorg%2FXML%2F1998%2Fnamespace");
  EXPECT_EQ(acceptableAddress(std::string(3'000'000, '<')).size(), 9'000'012U);
}

}  // namespace
}  // namespace tamzo::testing
