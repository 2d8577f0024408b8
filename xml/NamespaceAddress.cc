#include "xml/NamespaceAddress.h"

#include <libxml/parserInternals.h>
#include <libxml/uri.h>

#include <charconv>
#include <memory>
#include <new>

#include "base/Ascii.h"
#include "base/PercentEncoding.h"
#include "xml/XmlTree.h"

namespace tamzo {
namespace {

struct FreeUri {
  void operator()(xmlURI* uri) const noexcept { xmlFreeURI(uri); }
};

// The character behind "&#…;", which the parser has let through; nothing where there is none.
void appendNumbered(std::string& out, std::string_view digits) {
  const bool isHex = digits.starts_with('x');
  digits.remove_prefix(isHex ? 1 : 0);
  int value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value, isHex ? 16 : 10);
  xmlChar bytes[8];
  const int count = IS_CHAR(value) ? xmlCopyCharMultiByte(bytes, value) : 0;
  out.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
}

void appendRead(std::string& out, std::string_view text, const xmlDoc* doc, int nesting);

void appendReferred(std::string& out, const std::string& name, const xmlDoc* doc, int nesting) {
  if (name.starts_with('#')) {
    appendNumbered(out, std::string_view(name).substr(1));
    return;
  }
  const xmlEntity* entity = xmlGetDocEntity(doc, asXml(name));
  if (entity == nullptr || entity->content == nullptr || nesting >= kMaxEntityNesting) {
    return;
  }
  if (entity->etype == XML_INTERNAL_PREDEFINED_ENTITY) {
    out += asChars(entity->content);
  } else if (entity->etype == XML_INTERNAL_GENERAL_ENTITY) {
    appendRead(out, asChars(entity->content), doc, nesting + 1);
  }
}

void appendRead(std::string& out, std::string_view text, const xmlDoc* doc, int nesting) {
  while (!text.empty()) {
    const char c = text.front();
    const std::size_t end = c == '&' ? text.find(';') : std::string_view::npos;
    if (end != std::string_view::npos) {
      appendReferred(out, std::string(text.substr(1, end - 1)), doc, nesting);
      text.remove_prefix(end + 1);
      continue;
    }
    // Line ends and tabs that stand in an attribute count as blanks.
    const bool isBlank = nesting > 0 && (c == '\t' || c == '\n' || c == '\r');
    out += isBlank ? ' ' : c;
    text.remove_prefix(1);
  }
}

bool isUri(const std::string& address) {
  const std::unique_ptr<xmlURI, FreeUri> uri(xmlCreateURI());
  if (uri == nullptr) {
    throw std::bad_alloc();
  }
  return xmlParseURIReference(uri.get(), address.c_str()) == 0;
}

// libxml2's own gives up beyond a megabyte.
std::string percentEncode(std::string_view text) {
  std::string encoded;
  for (const char c : text) {
    if (isAsciiAlphanumeric(c)) {
      encoded += c;
    } else {
      appendPercentEncoded(encoded, c);
    }
  }
  return encoded;
}

// Nobody may declare these.
bool isReserved(std::string_view address) noexcept {
  return address.empty() || address == asChars(XML_XML_NAMESPACE) ||
         address == "http://www.w3.org/2000/xmlns/";
}

}  // namespace

std::string addressOf(const xmlNs& ns, const xmlDoc* doc) {
  std::string address;
  if (ns.href != nullptr) {
    appendRead(address, asChars(ns.href), doc, 0);
  }
  return address;
}

std::string acceptableAddress(std::string_view address) {
  std::string text(address);
  if (!isReserved(text) && isUri(text)) {
    return text;
  }
  return "urn:invalid:" + percentEncode(text);
}

}  // namespace tamzo
