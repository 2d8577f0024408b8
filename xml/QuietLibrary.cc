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
void makeRoomForThread() {
#if LIBXML_VERSION < 21200
  void* volatile block = std::malloc(sizeof(xmlGlobalState));
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  std::free(block);
#endif
}

// Threads that meet here wait for each other, as they do not everywhere in libxml2: what asks it
// for anything comes after this.
void initLibraryOnce() {
  static const bool done = [] {
    makeRoomForThread();
    xmlInitParser();
    return true;
  }();
  static_cast<void>(done);
}

void prepareThread() {
#if LIBXML_VERSION < 21200
  thread_local bool isPrepared = false;
  if (isPrepared) {
    return;
  }
  if (xmlIsMainThread() == 0) {
    makeRoomForThread();
    if (xmlGetGlobalState() == nullptr) {
      throw std::bad_alloc();
    }
  }
  isPrepared = true;
#endif
}

}  // namespace

QuietLibrary::QuietLibrary() {
  initLibraryOnce();
  prepareThread();
  handler_ = xmlGenericError;
  context_ = xmlGenericErrorContext;
  xmlSetGenericErrorFunc(nullptr, ignore);
}

}  // namespace tamzo
