#pragma once

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <memory>
#include <string>
#include <string_view>

namespace tamzo::testing {

/// What a reader who knows namespaces has against `xml`, as every browser does; "" for nothing.
/// The parser itself forgives some of it.
inline std::string strictComplaint(std::string_view xml) {
  struct Free {
    void operator()(xmlParserCtxt* parser) const noexcept {
      xmlFreeDoc(parser->myDoc);
      xmlFreeParserCtxt(parser);
    }
  };
  const std::unique_ptr<xmlParserCtxt, Free> parser(
      xmlCreateMemoryParserCtxt(xml.data(), static_cast<int>(xml.size())));
  if (parser == nullptr) {
    return "nothing to read";
  }
  xmlCtxtUseOptions(parser.get(), XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
  xmlParseDocument(parser.get());
  if (parser->wellFormed == 1 && parser->nsWellFormed == 1) {
    return "";
  }
  const xmlError* error = xmlCtxtGetLastError(parser.get());
  return error != nullptr && error->message != nullptr ? error->message : "not well-formed";
}

}  // namespace tamzo::testing
