#include "xml/QuietLibrary.h"

#include <libxml/globals.h>
#include <libxml/parser.h>
#include <libxml/threads.h>
#include <libxml/xmlversion.h>

#include <cstdlib>
#include <new>

namespace tamzo {
namespace {

// Up to 2.11 libxml2 allocates what it keeps of a thread at the thread's first call. When it finds
// no memory it tells its error handler, which stands in just that, and so calls itself until the
// stack ends. The block that is freed here is the one that it gets: the allocator hands a thread
// what it has freed last.
void prepareThread() {
#if LIBXML_VERSION < 21200
  thread_local bool isPrepared = false;
  if (isPrepared) {
    return;
  }
  if (xmlIsMainThread() == 0) {
    void* volatile block = std::malloc(sizeof(xmlGlobalState));
    if (block == nullptr) {
      throw std::bad_alloc();
    }
    std::free(block);
    if (xmlGetGlobalState() == nullptr) {
      throw std::bad_alloc();
    }
  }
  isPrepared = true;
#endif
}

void initLibraryOnce() {
  static const bool done = [] {
    xmlInitParser();
    return true;
  }();
  static_cast<void>(done);
}

}  // namespace

QuietLibrary::QuietLibrary() {
  prepareThread();
  initLibraryOnce();
  handler_ = xmlGenericError;
  context_ = xmlGenericErrorContext;
  xmlSetGenericErrorFunc(nullptr, ignore);
}

}  // namespace tamzo
