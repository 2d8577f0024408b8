#pragma once

#include <cstddef>
#include <string_view>

namespace tamzo {

/// How many bytes of an internal subset are declarations of elements, attributes and notations.
/// `subset` begins after the "[" that opens it; what follows the "]" that ends it is not looked at.
std::size_t bytesOfStructure(std::string_view subset) noexcept;

}  // namespace tamzo
