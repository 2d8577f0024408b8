#pragma once

#include <cstddef>
#include <string_view>

namespace tamzo::bench {

/// Builds the tree of a VAST 3 or 4 InLine response and makes the queries that the parse makes, in
/// the obvious way: each is an XPath expression that libxml2 compiles and evaluates in a context of
/// its own, and every text is copied out. Returns how many texts it read. It fills no record, so it
/// shows the queries' price alone.
std::size_t queryNaively(std::string_view response);

}  // namespace tamzo::bench
