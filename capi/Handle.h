#pragma once

#include "tamzo/base/Export.h"

namespace tamzo::capi {

/// What C holds a pointer to. In a debug build each is noted for as long as it lives, so that one
/// that is used after its release ends the program with a clear word. Without, it costs nothing.
class Handle {
 public:
#ifdef NDEBUG
  Handle() noexcept = default;
#else
  Handle();
  ~Handle();
#endif
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
};

/// True for null; in a debug build, ends the program unless the object is alive.
#ifdef NDEBUG
inline bool isNull(const Handle* handle, const char*) noexcept { return handle == nullptr; }
#else
bool isNull(const Handle* handle, const char* function) noexcept;
#endif

}  // namespace tamzo::capi

/// Asked first of each object that a function for C is given.
#define TAMZO_IS_NULL(handle) ::tamzo::capi::isNull(handle, __func__)
/// The same for one that may be null.
#define TAMZO_MAY_BE_NULL(handle) static_cast<void>(TAMZO_IS_NULL(handle))
