#pragma once

#include <libxml/xmlerror.h>

namespace tamzo {

/// Keeps libxml2 from writing to standard error on this thread, for as long as it lives. A library
/// in somebody's app has nothing to say there. Whatever calls libxml2 and may allocate holds one.
class QuietLibrary {
 public:
  /// Throws std::bad_alloc when there is no memory for what libxml2 keeps of a thread.
  QuietLibrary();
  ~QuietLibrary() { xmlSetGenericErrorFunc(context_, handler_); }
  QuietLibrary(const QuietLibrary&) = delete;
  QuietLibrary& operator=(const QuietLibrary&) = delete;

 private:
  static void ignore(void*, const char*, ...) noexcept {}  // NOLINT(cert-dcl50-cpp)

  xmlGenericErrorFunc handler_ = nullptr;
  void* context_ = nullptr;
};

}  // namespace tamzo
