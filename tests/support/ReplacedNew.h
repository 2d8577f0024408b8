#pragma once

// Replaces the global operator new and delete of an executable, whose tests say in
// tamzo::testing::allocate which allocations fail. Included by one source of it.

#include <cstdlib>
#include <new>

namespace tamzo::testing {

/// Memory for std::free; nullptr where there is to be none.
void* allocate(std::size_t size) noexcept;

}  // namespace tamzo::testing

// Inlined, g++ would take the pairs of them for mismatched ones.
#define REPLACED __attribute__((noinline))

REPLACED void* operator new(std::size_t size) {
  if (void* block = tamzo::testing::allocate(size)) {
    return block;
  }
  throw std::bad_alloc();
}
REPLACED void* operator new[](std::size_t size) { return operator new(size); }
REPLACED void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return tamzo::testing::allocate(size);
}
REPLACED void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return tamzo::testing::allocate(size);
}
REPLACED void operator delete(void* block) noexcept { std::free(block); }
REPLACED void operator delete[](void* block) noexcept { std::free(block); }
REPLACED void operator delete(void* block, std::size_t) noexcept { std::free(block); }
REPLACED void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
REPLACED void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
REPLACED void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }

#undef REPLACED
