#include "xml/LostName.h"

#include <cstddef>
#include <cstring>
#include <string_view>

#include "xml/XmlTree.h"

namespace tamzo {
namespace {

// What may stand before a name in a tag.
bool mayPrecedeName(char c) noexcept {
  return c == '<' || c == '/' || c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// The characters right before the parser, back to what may stand before a name.
std::string_view nameBefore(std::string_view read) noexcept {
  std::size_t begin = read.size();
  while (begin > 0 && !mayPrecedeName(read[begin - 1])) {
    --begin;
  }
  return read.substr(begin);
}

// "Failed to parse QName": ":b" where "a:b" stands was "a" once, and so was "a:" where "a:b"
// stands.
bool isPartOfName(std::string_view read, const xmlError& error) noexcept {
  const std::string_view name = error.str1 == nullptr ? "" : error.str1;
  if (error.str2 != nullptr) {
    return false;
  }
  return name.starts_with(':') ? nameBefore(read) != name : !read.ends_with(':');
}

// A tag or attribute without a name, though one was read.
bool isName(std::string_view read, std::string_view message) noexcept {
  const std::string_view name = nameBefore(read);
  const char before = name.size() < read.size() ? read[read.size() - name.size() - 1] : '\0';
  // Behind "<" is the name of the element, which may well be followed by no attribute.
  const bool isElement = message.starts_with("StartTag:");
  return !name.empty() && (before == '<') == isElement;
}

// The address of a namespace came out empty, though one is there that needs no entity and has come
// to its end.
bool isAddress(std::string_view read, char next) noexcept {
  const char quote = read.empty() ? '\0' : read.back();
  if ((quote != '"' && quote != '\'') || !(mayPrecedeName(next) || next == '>')) {
    return false;
  }
  read.remove_suffix(1);
  const std::size_t open = read.rfind(quote);
  const std::string_view address = open == std::string_view::npos ? "" : read.substr(open + 1);
  return !address.empty() && address.find('&') == std::string_view::npos;
}

}  // namespace

bool isLostName(const xmlParserCtxt& parser, const xmlError& error) noexcept {
  // What is wrong already is refused whatever follows.
  if (parser.input == nullptr || parser.instate != XML_PARSER_CONTENT || parser.wellFormed == 0) {
    return false;
  }
  const xmlParserInput& input = *parser.input;
  const std::string_view read(asChars(input.base),
                              static_cast<std::size_t>(input.cur - input.base));
  const std::string_view message = error.message == nullptr ? "" : error.message;
  if (error.domain == XML_FROM_NAMESPACE && error.code == XML_NS_ERR_QNAME) {
    return isPartOfName(read, error);
  }
  if (error.domain == XML_FROM_NAMESPACE && message.find("Empty XML namespace") < message.size()) {
    return input.cur < input.end && isAddress(read, static_cast<char>(*input.cur));
  }
  return error.code == XML_ERR_NAME_REQUIRED &&
         (message.starts_with("StartTag:") || message.starts_with("error parsing attribute")) &&
         isName(read, message);
}

bool hasLostPrefix(const xmlParserCtxt& parser, const xmlChar* localName, const xmlChar* prefix,
                   const xmlChar* uri, const xmlChar** attributes, int attributeCount) noexcept {
  // Names are kept once: the same place in memory is the same name. One with its prefix is another.
  if (parser.node == nullptr) {
    return false;
  }
  if (prefix != nullptr && uri == nullptr && parser.node->name == localName) {
    return true;
  }
  const xmlAttr* attribute = parser.node->properties;
  for (int i = 0; i < attributeCount && attribute != nullptr; ++i, attribute = attribute->next) {
    const xmlChar** given = attributes + std::ptrdiff_t{5} * i;
    if (given[1] != nullptr && given[2] == nullptr && attribute->name == given[0]) {
      return true;
    }
  }
  return false;
}

}  // namespace tamzo
