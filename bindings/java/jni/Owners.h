#pragma once

#include <memory>
#include <new>

#include "tamzo/tamzo_vast.h"

namespace tamzo::jni {

struct Release {
  void operator()(tamzo_vast_ad* ad) const noexcept { tamzo_vast_ad_release(ad); }
  void operator()(tamzo_vast_string* string) const noexcept { tamzo_vast_string_release(string); }
  void operator()(tamzo_vast_element* element) const noexcept {
    tamzo_vast_element_release(element);
  }
  void operator()(tamzo_vast_attributes* attributes) const noexcept {
    tamzo_vast_attributes_release(attributes);
  }
};

/// Owns what a function for C gave.
template <typename T>
using Owned = std::unique_ptr<T, Release>;

/// What `call` gives through its pointer; std::bad_alloc where memory ran out.
template <typename T, typename Call>
Owned<T> given(Call call) {
  T* object = nullptr;
  const tamzo_vast_status status = call(&object);
  Owned<T> owned(object);
  if (status == TAMZO_VAST_NO_MEMORY) {
    throw std::bad_alloc();
  }
  return owned;
}

}  // namespace tamzo::jni
