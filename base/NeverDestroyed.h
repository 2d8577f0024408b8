#pragma once

#include <cstddef>
#include <new>

namespace tamzo {

/// Holds a static that is never destroyed, since a thread may still use it while the process ends.
/// It stands in place: making it takes no memory but what T itself asks for.
template <typename T>
class NeverDestroyed {
 public:
  NeverDestroyed() { ::new (static_cast<void*>(bytes_)) T(); }
  NeverDestroyed(const NeverDestroyed&) = delete;
  NeverDestroyed& operator=(const NeverDestroyed&) = delete;

  T& operator*() noexcept { return *std::launder(reinterpret_cast<T*>(bytes_)); }

 private:
  alignas(T) std::byte bytes_[sizeof(T)];
};

}  // namespace tamzo
