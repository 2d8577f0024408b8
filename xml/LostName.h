#pragma once

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

namespace tamzo {

// Where libxml2 finds no memory for a name, or for the address of a namespace, it may say nothing,
// and read on as if that were another one or none. These tell that from a name that is wrong.

/// True when `error`, which `parser` has just come upon, is no fault of the text but of one that
/// found no memory.
bool isLostName(const xmlParserCtxt& parser, const xmlError& error) noexcept;

/// True when the element that `parser` has just begun, or one of its attributes, was left without
/// its prefix. `localName`, `prefix`, `uri`, `attributes` and their count are those of libxml2's
/// callback.
bool hasLostPrefix(const xmlParserCtxt& parser, const xmlChar* localName, const xmlChar* prefix,
                   const xmlChar* uri, const xmlChar** attributes, int attributeCount) noexcept;

}  // namespace tamzo
