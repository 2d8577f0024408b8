#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

// The one way to RapidJSON, which is all templates: a host may have another release of it, or other
// settings, and the linker would mix the two if both stood in one namespace.
#define RAPIDJSON_NAMESPACE tamzo::rapidjson
#define RAPIDJSON_NAMESPACE_BEGIN namespace tamzo::rapidjson {
#define RAPIDJSON_NAMESPACE_END }
// Its own default of four bytes on 32-bit machines is too little for a double on some of them.
#define RAPIDJSON_ALIGN(size) (((size) + std::size_t{7}) & ~std::size_t{7})

#include <rapidjson/internal/stack.h>

namespace tamzo {

/// Memory for RapidJSON, whose own allocator goes on with a null pointer when there is none left.
class JsonAllocator {
 public:
  static constexpr bool kNeedFree = true;

  static void* Malloc(std::size_t size) { return size == 0 ? nullptr : ::operator new(size); }
  static void* Realloc(void* block, std::size_t oldSize, std::size_t newSize) {
    void* moved = Malloc(newSize);
    if (block != nullptr && moved != nullptr) {
      std::memcpy(moved, block, std::min(oldSize, newSize));
    }
    Free(block);
    return moved;
  }
  static void Free(void* block) noexcept { ::operator delete(block); }
};

namespace rapidjson::internal {

// As it comes, it computes with the null pointer of a stack that has no memory yet.
template <>
template <typename T>
inline void Stack<JsonAllocator>::Reserve(std::size_t count) {
  if (static_cast<std::ptrdiff_t>(sizeof(T) * count) > stackEnd_ - stackTop_) {
    Expand<T>(count);
  }
}

}  // namespace rapidjson::internal

}  // namespace tamzo

#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>
#include <rapidjson/writer.h>
