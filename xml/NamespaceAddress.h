#pragma once

#include <libxml/tree.h>

#include <string>
#include <string_view>

namespace tamzo {

/// The address that `ns`, a declaration in `doc`, stands for. libxml2 keeps it half-read: with
/// references to entities as they were written. Reads the document's entities, and changes nothing.
std::string addressOf(const xmlNs& ns, const xmlDoc* doc);

/// `address` as every reader takes it: itself where it is a URI that may be declared, and else one
/// that is made of it. Different addresses stay different. Throws std::bad_alloc.
std::string acceptableAddress(std::string_view address);

}  // namespace tamzo
