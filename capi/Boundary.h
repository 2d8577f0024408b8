#pragma once

#include <cstddef>
#include <exception>
#include <limits>
#include <new>
#include <string_view>
#include <utility>

#include "tamzo/base/Text.h"
#include "tamzo/tamzo_vast.h"

namespace tamzo::capi {

/// Nil stays nil.
inline tamzo_vast_text viewOf(const Text& text) noexcept {
  if (text.isNil()) {
    return {nullptr, 0};
  }
  const std::string_view view = text.view();
  return {view.data() == nullptr ? "" : view.data(), view.size()};
}

/// A view of what C gives; nil is empty, and so is a length without characters.
inline std::string_view viewOf(tamzo_vast_text text) noexcept {
  return text.data == nullptr ? std::string_view() : std::string_view(text.data, text.size);
}

/// Whether no object can be that large: -1 taken for a length, above all.
constexpr bool isTooLong(std::size_t size) noexcept {
  return size > static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
}

/// Whether bytes cannot be read as given.
inline bool isUnreadable(const void* bytes, std::size_t length) noexcept {
  return (bytes == nullptr && length > 0) || isTooLong(length);
}

/// The same for a text, of which nil is fine.
inline bool isUnreadable(tamzo_vast_text text) noexcept {
  return text.data != nullptr && isTooLong(text.size);
}

template <typename Signature>
class FunctionView;

/// Something to call that outlives the call which it is handed to: what takes one need not be
/// compiled for each.
template <typename Result, typename... Arguments>
class FunctionView<Result(Arguments...)> {
 public:
  template <typename Function>
  FunctionView(const Function& function) noexcept  // NOLINT(google-explicit-constructor)
      : function_(&function), call_([](const void* called, Arguments... arguments) -> Result {
          return (*static_cast<const Function*>(called))(std::forward<Arguments>(arguments)...);
        }) {}

  Result operator()(Arguments... arguments) const {
    return call_(function_, std::forward<Arguments>(arguments)...);
  }

 private:
  const void* function_;
  Result (*call_)(const void*, Arguments...);
};

/// Runs what stands behind a function for C. Nothing that is thrown gets past it: what is no
/// std::exception comes from a hook of the host.
inline tamzo_vast_status guarded(FunctionView<tamzo_vast_status()> work) noexcept {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return TAMZO_VAST_NO_MEMORY;
  } catch (...) {
    return TAMZO_VAST_HOOK_FAILED;
  }
}

/// The same for a function that gives something through `out`, which is null unless `make` sets it.
/// `make` is not called for arguments that are invalid, or where there is no `out`.
template <typename T>
tamzo_vast_status give(bool isInvalid, T** out, FunctionView<tamzo_vast_status()> make) noexcept {
  if (out != nullptr) {
    *out = nullptr;
  }
  return isInvalid || out == nullptr ? TAMZO_VAST_INVALID_ARGUMENT : guarded(make);
}

}  // namespace tamzo::capi
