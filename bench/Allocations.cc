// Allocations and bytes of one parse, beside those of libxml2's own.
//
// Counted: every call of operator new in any form (all that the library's C++ allocates goes
// through it) and, through xmlMemSetup, every malloc, strdup and growing realloc of libxml2 as one
// allocation of the size asked for. Not counted: memory that the C library takes for itself.

#include <libxml/parser.h>
#include <libxml/xmlmemory.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "bench/Documents.h"
#include "bench/Floor.h"

namespace {

struct Count {
  std::size_t calls = 0;
  std::size_t bytes = 0;

  void add(std::size_t size) noexcept {
    ++calls;
    bytes += size;
  }
};

Count ofCxx;
Count ofLibxml2;

void* countedNew(std::size_t size) {
  ofCxx.add(size);
  if (void* memory = std::malloc(size == 0 ? 1 : size)) {
    return memory;
  }
  throw std::bad_alloc();
}

void* countedNew(std::size_t size, std::align_val_t alignment) {
  ofCxx.add(size);
  const auto align = static_cast<std::size_t>(alignment);
  if (void* memory = std::aligned_alloc(align, (size + align - 1) / align * align)) {
    return memory;
  }
  throw std::bad_alloc();
}

void* countedMalloc(std::size_t size) {
  ofLibxml2.add(size);
  return std::malloc(size);
}
void* countedRealloc(void* memory, std::size_t size) {
  ofLibxml2.add(size);
  return std::realloc(memory, size);
}
char* countedStrdup(const char* text) {
  const std::size_t size = std::strlen(text) + 1;
  ofLibxml2.add(size);
  auto* copy = static_cast<char*>(std::malloc(size));
  return copy == nullptr ? nullptr : static_cast<char*>(std::memcpy(copy, text, size));
}

}  // namespace

void* operator new(std::size_t size) { return countedNew(size); }
void* operator new[](std::size_t size) { return countedNew(size); }
void* operator new(std::size_t size, std::align_val_t align) { return countedNew(size, align); }
void* operator new[](std::size_t size, std::align_val_t align) { return countedNew(size, align); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }

namespace {

constexpr std::size_t kMostCallsForA = 250;

bool report(const tamzo::bench::DocumentKind& kind) {
  const std::string text = kind.make(1);
  tamzo::bench::requireSize(kind, text);
  const auto response = tamzo::Text::sharing(text, nullptr);
  // Once before, so that what is made once per process is not counted.
  tamzo::bench::requireWholeRecord(kind.name, *tamzo::TamzoVastAd::initWithVast(response));

  ofLibxml2 = {};
  tamzo::bench::buildAndFreeTree(text);
  const Count floor = ofLibxml2;

  ofLibxml2 = {};
  ofCxx = {};
  tamzo::TamzoVastAd::initWithVast(response);
  const Count own = ofCxx;
  const Count libxml2 = ofLibxml2;

  std::printf("%-8s %8zu %9zu   %8zu %9zu   %8zu %9zu\n", std::string(kind.name).c_str(), own.calls,
              own.bytes, libxml2.calls, libxml2.bytes, floor.calls, floor.bytes);
  return kind.name != "a" || own.calls <= kMostCallsForA;
}

}  // namespace

// With --check: exit status 1 when (a) takes more than its limit.
int main(int argc, char** argv) {
  xmlMemSetup(std::free, countedMalloc, countedRealloc, countedStrdup);
  xmlInitParser();
  std::printf("%-8s %18s   %18s   %18s\n", "", "own (operator new)", "libxml2, in parse",
              "libxml2, in floor");
  std::printf("%-8s %8s %9s   %8s %9s   %8s %9s\n", "document", "calls", "bytes", "calls", "bytes",
              "calls", "bytes");
  try {
    bool isWithin = true;
    for (const auto& kind : tamzo::bench::kDocumentKinds) {
      isWithin = report(kind) && isWithin;
    }
    const bool isCheck = argc > 1 && std::strcmp(argv[1], "--check") == 0;
    return isCheck && !isWithin ? 1 : 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
