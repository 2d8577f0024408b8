#pragma once

#include <libxml/xmlerror.h>

namespace tamzo {

/// Keeps libxml2 from writing to standard error on this thread, for as long as it lives. A library
/// in somebody's app has nothing to say there.
class QuietLibrary {
 public:
  QuietLibrary() noexcept : handler_(xmlGenericError), context_(xmlGenericErrorContext) {
    xmlSetGenericErrorFunc(nullptr, ignore);
  }
  ~QuietLibrary() { xmlSetGenericErrorFunc(context_, handler_); }
  QuietLibrary(const QuietLibrary&) = delete;
  QuietLibrary& operator=(const QuietLibrary&) = delete;

 private:
  static void ignore(void*, const char*, ...) noexcept {}  // NOLINT(cert-dcl50-cpp)

  xmlGenericErrorFunc handler_;
  void* context_;
};

}  // namespace tamzo
