#include "capi/Handle.h"

#ifndef NDEBUG

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <unordered_set>

namespace tamzo::capi {
namespace {

struct Living {
  std::mutex mutex;
  std::unordered_set<const Handle*> handles;
};

// Never destroyed: a thread may still use one while the process ends.
Living& living() {
  static auto& all = *new Living();
  return all;
}

}  // namespace

Handle::Handle() {
  Living& all = living();
  const std::lock_guard lock(all.mutex);
  all.handles.insert(this);
}

Handle::~Handle() {
  Living& all = living();
  const std::lock_guard lock(all.mutex);
  all.handles.erase(this);
}

bool isNull(const Handle* handle, const char* function) noexcept {
  if (handle == nullptr) {
    return true;
  }
  Living& all = living();
  const std::lock_guard lock(all.mutex);
  if (all.handles.count(handle) == 0) {
    std::fprintf(stderr, "%s: the object was released, or is none of this library\n", function);
    std::abort();
  }
  return false;
}

}  // namespace tamzo::capi

#endif
